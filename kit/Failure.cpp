#include "lyr/failure.h"

#include "LYRSysTSDicoCLSIDName.h"
#include "lyr/explain.h"

#include <cstdio>
#include <exception>
#include <mutex>

namespace lyr {
inline namespace v1 {

Failure::Failure(Reason reason, HRESULT result, const std::string& text)
    : std::runtime_error(text), _reason(reason), _result(result) {}

Failure::Failure(const Failure&) noexcept = default;
Failure& Failure::operator=(const Failure&) noexcept = default;
Failure::~Failure() = default;

namespace detail {

namespace {

/// What the latest constructor that failed has thrown, for people to read. Nothing of it is made or
/// destroyed, as other libraries' static objects may still make components.
class LatestThrown {
public:
    void Set(const char* text) {
        const std::lock_guard<std::mutex> guard(_mutex);
        std::snprintf(_text, sizeof _text, "%s", text);
    }
    std::string Get() {
        const std::lock_guard<std::mutex> guard(_mutex);
        return _text;
    }

private:
    std::mutex _mutex;
    char _text[200] = "";
};

constinit LatestThrown latestThrown;

Reason ReasonOf(const Explanation& explanation) {
    if (explanation.root >= explanation.steps.size()) return Reason::kUnknownClass;
    switch (explanation.steps[explanation.root].cause) {
        case Cause::kLibraryNotFound:
        case Cause::kLibraryNotLoading:
            return Reason::kMissingLibrary;
        case Cause::kNoFunction:
        case Cause::kFunctionElsewhere:
            return Reason::kMissingEntryPoint;
        default:
            return Reason::kUnknownClass;
    }
}

bool IsNotListed(const Explanation& explanation) {
    if (explanation.root >= explanation.steps.size()) return false;
    const Cause cause = explanation.steps[explanation.root].cause;
    return cause == Cause::kNoEntry || cause == Cause::kIdWithoutName;
}

[[noreturn]] void Throw(Reason reason, HRESULT result, std::string text) {
    if (!text.empty() && text.back() == '\n') text.pop_back();
    throw Failure(reason, result, text);
}

/// All that is to be found is there; no object came of it.
[[noreturn]] void ThrowNotMade(const std::string& what, HRESULT result) {
    const std::string thrown = latestThrown.Get();
    Throw(Reason::kNotMade, result,
          "lyr: no " + what + " is made: the function that makes it gave no object\n" +
              (thrown.empty()
                   ? "  perhaps     its library refuses, or memory is out"
                   : "  perhaps     its constructor; the latest that failed threw: " + thrown));
}

/// The refusal of a request, told before where that is asked for.
[[noreturn]] void ThrowRefusal(const Explanation& explanation, HRESULT result) {
    Report(explanation);
    const std::string what = explanation.interfaceName + " for a " + explanation.className;
    if (explanation.answer == Explanation::Answer::kYes) {
        Throw(Reason::kNoInterface, result,
              "lyr: no " + what +
                  ": the function that answers it gave null\n"
                  "  perhaps     what makes its implementation has failed, or refuses");
    }
    const char* const more =
        IsNotListed(explanation)
            ? "  or          list it in the class, or use TryAs where it may be missing"
            : "";
    Throw(Reason::kNoInterface, result, explanation.text + more);
}

}  // namespace

void ThrowNoInterface(IUnknown* object, const GUID& iid, const char* interfaceName,
                      HRESULT result) {
    if (object == nullptr) {
        Throw(Reason::kNullReference, result,
              std::string("lyr: no ") + interfaceName +
                  ": a null reference was asked\n"
                  "  remedy      test the reference before, or use TryAs");
    }
    ThrowRefusal(ExplainRequest(object, iid, Loading::kNo, interfaceName), result);
}

void ThrowNotCreated(const char* className) {
    if (className == nullptr) {
        Throw(Reason::kUnknownClass, E_FAIL, "lyr: no object is made: no class was named");
    }
    const Explanation explanation = ExplainCreation(className, Loading::kYes);
    if (explanation.answer == Explanation::Answer::kYes) ThrowNotMade(className, E_FAIL);
    Throw(ReasonOf(explanation), E_FAIL, explanation.text);
}

void ThrowNotCreated(const GUID& clsid, const GUID& iid, HRESULT result) {
    const Explanation explanation = ExplainCreation(clsid, Loading::kYes);
    const CLSIDNameRecord* const entry = LYRSysTSDicoCLSIDName::QueryDicoCLSIDNameByCLSID(clsid);
    if (explanation.answer != Explanation::Answer::kYes || entry == nullptr) {
        Throw(ReasonOf(explanation), result, explanation.text);
    }
    if (result != E_NOINTERFACE) ThrowNotMade(entry->className, result);
    ThrowRefusal(ExplainRequest(entry->className, iid, Loading::kYes), result);
}

void* MakeOrNull(void* (*make)()) noexcept {
    try {
        return make();
    } catch (const std::exception& exception) {
        latestThrown.Set(exception.what());
    } catch (...) {
        latestThrown.Set("what is no std::exception");
    }
    return nullptr;
}

}  // namespace detail
}  // namespace v1
}  // namespace lyr
