#include "lyr/failure.h"

#include "LYRSysTSDicoCLSIDName.h"
#include "LYRSysTSDictionary.h"
#include "LYRThrLibraryManager.h"
#include "lyr/records.h"
#include "lyr/ref.h"

#include <cstdio>
#include <cstdlib>
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

std::string InBraces(const GUID& id) {
    std::string text(kIdLength + 3, '\0');
    Writer(text.data()).Word(id);
    return text.substr(1);
}

std::string Dictionaries() {
    const char* const path = std::getenv("LYRDictionaryPath");  // NOLINT(concurrency-mt-unsafe)
    if (path == nullptr) return "LYRDictionaryPath, which is not set";
    return "LYRDictionaryPath, now \"" + std::string(path) + "\"";
}

/// The name of the object's class.
std::string ClassOf(IUnknown* object) {
    const Ref<LYRSysTSBaseUnknown> base = TryAs<LYRSysTSBaseUnknown>(object);
    const char* const name = base != nullptr ? base->IsA() : nullptr;
    return name != nullptr ? name : "object";
}

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

/// What the dictionary has for the creation of a class by name. Texts are interned.
struct Entry {
    bool isCreatorKnown = false;
    const char* library = nullptr;
};

Entry EntryOf(const char* className) {
    const LYRSysTSInfoDic* const record =
        LYRSysTSDictionary::QueryDictionary(className, "CreateInterface", 1);
    if (record == nullptr) return {};
    // Other threads may be filling the record in.
    GetGlobalDicoMutex()->LockF();
    const Entry entry{record->creator != nullptr, record->sharedLibrary};
    GetGlobalDicoMutex()->UnlockF();
    return entry;
}

/// Goes the way of a creation again, up to where it ends: says why no object came of it.
class Creation {
public:
    /// What was asked for, "a Greeter"; where its dictionary line would stand, "Greeter
    /// CreateInterface <library> in a .dicts file"; and the answer of the creation.
    Creation(std::string what, std::string line, HRESULT result)
        : _what(std::move(what)), _line(std::move(line)), _result(result) {}

    [[noreturn]] void ThrowUnknown() const {
        Throw(Reason::kUnknownClass, "no dictionary file and no code says what makes it",
              "remedy      a line " + _line + ", in a folder of " + Dictionaries());
    }
    /// Throws when the library or the function in it is missing.
    void ThrowMissing(const std::string& library, const std::string& function) const {
        if (LYRThrLibraryManager::LoadLibrary(library.c_str()) == nullptr) {
            Throw(Reason::kMissingLibrary, "the library " + library + " does not load",
                  "the loader  " + LYRThrLibraryManager::LastFailure());
        }
        if (LYRThrLibraryManager::GetFunctionAddress(library.c_str(), function.c_str()) ==
            nullptr) {
            Throw(Reason::kMissingEntryPoint, "the library " + library + " exports no " + function,
                  "remedy      define the class in that library, or correct the line " + _line);
        }
    }
    [[noreturn]] void ThrowNotMade() const {
        const std::string thrown = latestThrown.Get();
        Throw(Reason::kNotMade, "the function that makes it gave no object",
              thrown.empty()
                  ? "perhaps     its library refuses, or memory is out"
                  : "perhaps     its constructor; the latest that failed threw: " + thrown);
    }

private:
    [[noreturn]] void Throw(Reason reason, const std::string& why, const std::string& more) const {
        throw Failure(reason, _result, "lyr: no " + _what + " is made: " + why + "\n  " + more);
    }

    std::string _what;
    std::string _line;
    HRESULT _result;
};

}  // namespace

void ThrowNoInterface(IUnknown* object, const char* interfaceName, HRESULT result) {
    const std::string name = interfaceName;
    if (object == nullptr) {
        throw Failure(Reason::kNullReference, result,
                      "lyr: no " + name +
                          ": a null reference was asked\n"
                          "  remedy      test the reference before, or use TryAs");
    }
    throw Failure(Reason::kNoInterface, result,
                  "lyr: no " + name + " for a " + ClassOf(object) +
                      "\n  remedy      list it in the class, or use TryAs where it may be missing");
}

void ThrowNotCreated(const char* className) {
    if (className == nullptr) {
        throw Failure(Reason::kUnknownClass, E_FAIL, "lyr: no object is made: no class was named");
    }
    const std::string name = className;
    const Creation creation(name, "\"" + name + " CreateInterface <library>\" in a .dicts file",
                            E_FAIL);
    const Entry entry = EntryOf(className);
    if (!entry.isCreatorKnown) {
        if (entry.library == nullptr) creation.ThrowUnknown();
        creation.ThrowMissing(entry.library, "fctLYRSysTSCreate" + name);
    }
    creation.ThrowNotMade();
}

void ThrowNotCreated(const GUID& clsid, const char* interfaceName, HRESULT result) {
    const std::string id = InBraces(clsid);
    const CLSIDNameRecord* const entry = LYRSysTSDicoCLSIDName::QueryDicoCLSIDNameByCLSID(clsid);
    const std::string what = entry != nullptr ? entry->className + (" " + id) : "object of " + id;
    const Creation creation(what, "\"" + id + " <class> <library>\" in a .clsidts file", result);
    if (entry == nullptr || entry->library == nullptr) creation.ThrowUnknown();
    creation.ThrowMissing(entry->library, "LYRSysTSDllGetClassObject");
    if (result == E_NOINTERFACE) {
        throw Failure(Reason::kNoInterface, result,
                      std::string("lyr: no ") + interfaceName + " for a " + entry->className);
    }
    creation.ThrowNotMade();
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
