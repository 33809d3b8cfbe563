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

#include <atomic>
#include <chrono>
#include <optional>
#include <string>
#include <thread>

namespace lyr {

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
/// library's initialiser may be waiting for the very thread that asks. Once that has been in vain,
/// no search waits any more until that load has ended.
class Patience {
public:
    /// Waits for a moment; false when it is time to give up.
    bool Wait() {
        static std::atomic<std::uint64_t> inVain = ~std::uint64_t{0};
        const std::uint64_t ended = LYRThrLibraryManager::LoadsEnded();
        if (inVain.load(std::memory_order_relaxed) == ended) return false;
        if (Clock::now() >= _end) {
            inVain.store(ended, std::memory_order_relaxed);
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
    bool mayPass = false;
    void* const handle = LYRThrLibraryManager::TryLoadLibrary(library, mayPass);
    if (mayPass) _mayPass = true;
    BeginLook();
    return handle != nullptr ? FindClass(name) : nullptr;
}

LYRSysTSInterfaceFactory DictionarySearch::FindEntryPoint(const EntryCopy& entry,
                                                          const char* interfaceName) {
    bool mayPass = true;
    void* address = nullptr;
    if (const auto name = EntryPointName(entry, interfaceName, _asked.IsA())) {
        const char* const symbol = name->c_str();
        address = LYRThrLibraryManager::TryGetFunctionAddress(entry.library, symbol, mayPass);
    }
    if (mayPass) _mayPass = true;
    BeginLook();  // what this has loaded was no look of another one's
    return ToFunction<LYRSysTSInterfaceFactory>(address);
}

void DictionarySearch::BeginLook() {
    _loadsEnded = LYRThrLibraryManager::LoadsEnded();
}

bool DictionarySearch::MayHaveBeenLoading() const {
    return LYRThrLibraryManager::MayHaveBeenLoadingSince(_loadsEnded);
}

}  // namespace lyr
