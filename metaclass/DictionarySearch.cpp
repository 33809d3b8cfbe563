#include "metaclass/DictionarySearch.h"

#include "LYRSysTSDictionary.h"
#include "LYRSysTSKnownIds.h"
#include "LYRSysTSMetaClassExt.h"
#include "LYRThrLibraryManager.h"
#include "dictionary/DictionaryScan.h"
#include "dictionary/EntryCopy.h"
#include "dictionary/InterfaceName.h"
#include "support/AddressCast.h"
#include "support/Shortage.h"

#include <chrono>
#include <optional>
#include <string>
#include <thread>

namespace lyr::internal {

namespace {

LYRSysTSMetaClassBase* FindClass(const char* name) {
    LYRSysTSMetaClass* const metaObject = LYRSysTSDictionary::QueryMetaObject(name);
    return metaObject != nullptr ? metaObject->ToMetaClassBase() : nullptr;
}

/// None without memory.
std::optional<std::string> EntryPointName(const EntryCopy& entry, const char* interfaceName,
                                          const char* className) {
    return RefuseOnShortage(std::nullopt, [&]() -> std::optional<std::string> {
        std::string name("LYRSysTSCreate");
        name += entry.leaf != nullptr ? entry.leaf : interfaceName;
        name += entry.extension != nullptr ? entry.extension : className;
        return name;
    });
}

/// Lets a search look over and over while a library may be loading. For a second at most: the
/// library's initialiser may be waiting for the very thread that asks.
class Patience {
public:
    /// Waits for a moment; false when it is time to give up.
    bool Wait() {
        if (!LYRThrLibraryManager::MayAwaitLoads()) return false;
        if (Clock::now() >= _end) {
            LYRThrLibraryManager::GiveUpOnLoads();
            return false;
        }
        std::this_thread::sleep_for(std::chrono::microseconds(100));
        return true;
    }

private:
    using Clock = std::chrono::steady_clock;
    const Clock::time_point _end = Clock::now() + std::chrono::seconds(1);
};

}  // namespace

SearchResult DictionarySearch::Run() {
    _filesAreRead = EnsureDictionaryFilesAreRead();
    _mayPass = !_filesAreRead;
    BeginLook();
    const LYRSysTSInterfaceFactory factory = Find();
    return {factory, factory == nullptr && (_mayPass || MayHaveBeenLoading())};
}

LYRSysTSInterfaceFactory DictionarySearch::Find() {
    // Each of the look-ups asks for the dictionary files by itself: without a path to them, each
    // says so again. But what has just failed is not tried again at once.
    const short load = _filesAreRead ? 1 : 0;
    const GUID* const clsid = _asked.GetClassId();
    const EntryCopy known = clsid != nullptr ? EntryCopy::Of(*clsid, _iid, load) : EntryCopy{};
    // What stands under this id is a meta-object, and no factory.
    if (_iid == CLSID_LYRSysTSMetaClass) return nullptr;
    if (known.creator != nullptr) return known.library != nullptr ? known.creator : nullptr;

    const char* const interfaceName = InterfaceName(_iid, load);
    const EntryCopy entry = EntryCopy::Of(_asked.IsA(), interfaceName, load);
    if (entry.record == nullptr || entry.library == nullptr) return nullptr;
    if (entry.leaf != nullptr && !LeafImplements(entry.leaf)) return nullptr;
    if (entry.extension != nullptr && !Extends(entry)) return nullptr;

    const LYRSysTSInterfaceFactory factory = FindEntryPoint(entry, interfaceName);
    if (factory != nullptr && clsid != nullptr) {
        LYRSysTSDictionary::AddDictionaryTS(*clsid, _iid, factory, entry.record);
    }
    return factory;
}

/// Whether the leaf interface is derived from the one that is asked for.
bool DictionarySearch::LeafImplements(const char* leaf) const {
    const LYRSysTSMetaClass* const metaObject = LYRSysTSDictionary::QueryMetaObject(leaf);
    return metaObject != nullptr && metaObject->IsAKindOf(_iid) != 0;
}

/// Whether the entry's extension extends the class. The library that makes it may be loading in
/// another thread, with this class still to be named.
bool DictionarySearch::Extends(const EntryCopy& entry) {
    LYRSysTSMetaClassBase* const metaObject = FindOrLoadClass(entry.extension, entry.library);
    if (metaObject == nullptr) return false;
    LYRSysTSMetaClassExt* const extension = metaObject->CastToMetaExtension();
    if (extension == nullptr) return false;
    if (Lists(*extension)) return true;
    Patience patience;
    while (MayHaveBeenLoading() && patience.Wait()) {
        if (Lists(*extension)) return true;
    }
    return false;
}

bool DictionarySearch::Lists(LYRSysTSMetaClassExt& extension) {
    BeginLook();
    if (extension.IsExtensionOf(&_asked)) return true;
    if (extension.LacksNames()) _mayPass = true;
    return false;
}

/// The class, loading the library that is said to make its meta-object if there is none yet.
LYRSysTSMetaClassBase* DictionarySearch::FindOrLoadClass(const char* name, const char* library) {
    if (LYRSysTSMetaClassBase* const found = FindClass(name)) return found;
    void* const handle =
        Load([=](bool& mayPass) { return LYRThrLibraryManager::TryLoadLibrary(library, mayPass); });
    return handle != nullptr ? FindClass(name) : nullptr;
}

LYRSysTSInterfaceFactory DictionarySearch::FindEntryPoint(const EntryCopy& entry,
                                                          const char* interfaceName) {
    const auto name = EntryPointName(entry, interfaceName, _asked.IsA());
    if (!name) {
        _mayPass = true;
        return nullptr;
    }
    return ToFunction<LYRSysTSInterfaceFactory>(Load([&](bool& mayPass) {
        return LYRThrLibraryManager::TryGetFunctionAddress(entry.library, name->c_str(), mayPass);
    }));
}

/// What the library manager answers, which may load a library for it.
template <typename Ask>
void* DictionarySearch::Load(Ask ask) {
    if (MayHaveBeenLoading()) _mayPass = true;
    bool mayPass = false;
    void* const answer = ask(mayPass);
    if (mayPass) _mayPass = true;
    BeginLook();
    return answer;
}

void DictionarySearch::BeginLook() {
    _loads = LYRThrLibraryManager::MarkLoads();
}

bool DictionarySearch::MayHaveBeenLoading() const {
    return LYRThrLibraryManager::MayHaveBeenLoadingSince(_loads);
}

}  // namespace lyr::internal
