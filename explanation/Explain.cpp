#include "LYRSysTSBaseUnknown.h"
#include "LYRSysTSDicoIIDName.h"
#include "LYRSysTSDictionary.h"
#include "LYRSysTSKnownIds.h"
#include "LYRSysTSMetaClass.h"
#include "dictionary/DictionaryScan.h"
#include "explanation/Conclusion.h"
#include "explanation/ExplainedSearch.h"
#include "explanation/Reporter.h"
#include "object/Creation.h"
#include "support/Notes.h"

#include <algorithm>
#include <cstdio>
#include <mutex>
#include <new>
#include <optional>

namespace lyr {

namespace {

using internal::Conclude;
using internal::Notes;
using internal::QuestionOf;

Notes::Mode ModeOf(Loading loading) {
    return loading == Loading::kYes ? Notes::Mode::kExplainLoad : Notes::Mode::kExplain;
}

/// Has the dictionary files read where that is allowed.
void EnsureFiles(Loading loading) {
    if (loading == Loading::kYes) internal::EnsureDictionaryFilesAreRead();
}

/// The client's name for the interface may be known, with another id: that comes before all that
/// the search has met.
void NoteAnotherId(const GUID& iid, const char* interfaceName, Notes& notes) {
    const GUID* const known = LYRSysTSDicoIIDName::QueryDicoIIDNameByName(interfaceName);
    if (known == nullptr || *known == iid) return;
    notes.Add(Cause::kNameOfAnotherId, nullptr, interfaceName, nullptr,
              internal::InBraces(*known).c_str());
    std::vector<Step>& steps = notes.Steps();
    if (!notes.IsShort()) std::rotate(steps.begin(), steps.end() - 1, steps.end());
}

Explanation ExplainOf(LYRSysTSMetaClass& metaObject, const GUID& iid, const char* interfaceName,
                      Loading loading) {
    Notes notes(ModeOf(loading));
    EnsureFiles(loading);
    const bool isFound = internal::ExplainedSearch::Run(metaObject, iid, notes);
    internal::Question question = QuestionOf(metaObject.IsA(), &iid, interfaceName);
    question.isOfRequest = internal::RecallSteps(question.className, iid, isFound, notes);
    NoteAnotherId(iid, interfaceName, notes);
    return Conclude(question, notes, isFound && !question.isOfRequest);
}

/// Of something that hinders before any search.
Explanation Stop(Cause cause, const char* className, const GUID* iid, const char* interfaceName) {
    Notes notes(Notes::Mode::kExplain);
    notes.Add(cause, className, interfaceName);
    return Conclude(QuestionOf(className, iid, interfaceName), notes, false);
}

/// The object as the base class of all components, while it lives; or why it is none.
class Base {
public:
    explicit Base(IUnknown& object) {
        void* out = nullptr;
        const HRESULT result = object.QueryInterface(CLSID_LYRSysTSBaseUnknown, &out);
        if (result == S_OK && out != nullptr) {
            _object = static_cast<LYRSysTSBaseUnknown*>(static_cast<IUnknown*>(out));
        } else if (result == E_UNEXPECTED) {
            _cause = Cause::kDeadObject;
        }
    }
    ~Base() {
        if (_object != nullptr) _object->Release();
    }
    Base(const Base&) = delete;
    Base& operator=(const Base&) = delete;

    LYRSysTSBaseUnknown* Object() const { return _object; }
    Cause WhyNot() const { return _cause; }

private:
    LYRSysTSBaseUnknown* _object = nullptr;
    Cause _cause = Cause::kNoMetaObject;
};

Explanation ExplainOf(IUnknown* object, const GUID& iid, const char* interfaceName,
                      Loading loading) {
    if (object == nullptr) return Stop(Cause::kNullObject, nullptr, &iid, interfaceName);
    const Base base(*object);
    if (base.Object() == nullptr) return Stop(base.WhyNot(), nullptr, &iid, interfaceName);
    LYRSysTSMetaClass* const metaObject = base.Object()->GetMetaObject();
    if (metaObject == nullptr) return Stop(Cause::kNoMetaObject, nullptr, &iid, interfaceName);
    return ExplainOf(*metaObject, iid, interfaceName, loading);
}

Explanation ExplainOf(const char* className, const GUID& iid, const char* interfaceName,
                      Loading loading) {
    EnsureFiles(loading);
    if (LYRSysTSMetaClass* const metaObject = LYRSysTSDictionary::QueryMetaObject(className)) {
        return ExplainOf(*metaObject, iid, interfaceName, loading);
    }
    Notes notes(ModeOf(loading));
    notes.Add(Cause::kUnknownClass, className, interfaceName);
    const bool isFound = internal::ExplainedSearch::Run(className, iid, notes);
    return Conclude(QuestionOf(className, &iid, interfaceName), notes, isFound);
}

/// The id of an interface that is known by name, in a file or as a class.
std::optional<GUID> IdOf(const char* interfaceName, Loading loading) {
    EnsureFiles(loading);
    if (const GUID* const iid = LYRSysTSDicoIIDName::QueryDicoIIDNameByName(interfaceName)) {
        return *iid;
    }
    const LYRSysTSMetaClass* const leaf = LYRSysTSDictionary::QueryMetaObject(interfaceName);
    const GUID* const iid = leaf != nullptr ? leaf->GetClassId() : nullptr;
    return iid != nullptr ? std::optional(*iid) : std::nullopt;
}

template <typename Of>
Explanation ExplainByName(Of of, const char* className, const char* interfaceName,
                          Loading loading) {
    if (const std::optional<GUID> iid = IdOf(interfaceName, loading)) {
        return ExplainOf(of, *iid, interfaceName, loading);
    }
    const bool mayBeWritten = internal::StateOfDictionaryFiles() == internal::FilesState::kNotRead;
    return Stop(mayBeWritten ? Cause::kFilesNotRead : Cause::kUnknownInterface, className, nullptr,
                interfaceName != nullptr ? interfaceName : "(null)");
}

/// What LYRExplain has told last.
class LastWords {
public:
    template <typename Make>
    const char* Set(Make make) noexcept {
        try {
            return Keep(make().c_str());
        } catch (const std::bad_alloc&) {
            return Keep("lyr: no memory to explain it\n");
        }
    }

private:
    const char* Keep(const char* text) {
        const std::lock_guard<std::mutex> guard(_mutex);
        std::snprintf(_text, sizeof _text, "%s", text);
        return _text;
    }

    std::mutex _mutex;
    char _text[8192] = "";
};

constinit LastWords lastWords;

}  // namespace

inline namespace v1 {

Explanation ExplainRequest(IUnknown* object, const GUID& iid, Loading loading,
                           const char* interfaceName) {
    return ExplainOf(object, iid, interfaceName, loading);
}

Explanation ExplainRequest(IUnknown* object, const char* interfaceName, Loading loading) {
    return ExplainByName(object, nullptr, interfaceName, loading);
}

Explanation ExplainRequest(const char* className, const GUID& iid, Loading loading) {
    return ExplainOf(className, iid, nullptr, loading);
}

Explanation ExplainRequest(const char* className, const char* interfaceName, Loading loading) {
    return ExplainByName(className, className, interfaceName, loading);
}

Explanation ExplainCreation(const char* className, Loading loading) {
    Notes notes(ModeOf(loading));
    if (className == nullptr) notes.Add(Cause::kNoCreator, "(null)", "CreateInterface");
    const bool isFound = className != nullptr &&
                         internal::FindCreationFunction(className, nullptr, &notes) != nullptr;
    return Conclude(internal::CreationOf(className, {}), notes, isFound);
}

Explanation ExplainCreation(const GUID& clsid, Loading loading) {
    Notes notes(ModeOf(loading));
    const bool isFound = internal::FindGetClassObject(clsid, &notes) != nullptr;
    return Conclude(internal::CreationOf(clsid), notes, isFound);
}

}  // namespace v1
}  // namespace lyr

const char* LYRExplain(IUnknown* object, const char* interfaceName) noexcept {
    return lyr::lastWords.Set([=] { return lyr::ExplainRequest(object, interfaceName).text; });
}
