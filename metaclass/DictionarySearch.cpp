#include "metaclass/DictionarySearch.h"

#include "LYRSysTSDictionary.h"
#include "LYRSysTSKnownIds.h"
#include "LYRSysTSMetaClassExt.h"
#include "LYRThrLibraryManager.h"
#include "dictionary/DictionaryScan.h"
#include "dictionary/DictionaryTables.h"
#include "dictionary/EntryCopy.h"
#include "dictionary/InterfaceName.h"
#include "support/AddressCast.h"
#include "support/Notes.h"
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
    _filesAreRead = EnsureFilesAreRead();
    _mayPass = !_filesAreRead;
    BeginLook();
    const LYRSysTSInterfaceFactory factory = Find();
    if (factory != nullptr) return {factory, false};
    if (MayHaveBeenLoading()) _metLoading = true;
    if (_metLoading && _filesAreRead) Note(Cause::kLoading);
    return {nullptr, _mayPass || _metLoading};
}

bool DictionarySearch::EnsureFilesAreRead() const {
    if (_notes == nullptr) return EnsureDictionaryFilesAreRead();
    if (DictionaryTables::Deleted()) Note(Cause::kDictionaryClosed);
    const bool mayRead = _notes->MayRead();
    if (mayRead && !EnsureDictionaryFilesAreRead()) {
        const bool isReading = StateOfDictionaryFiles() == FilesState::kBeingRead;
        Note(isReading ? Cause::kFilesBeingRead : Cause::kNoMemory);
        return false;
    }
    switch (StateOfDictionaryFiles()) {
        case FilesState::kRead:
            return true;
        case FilesState::kNoFolders:
            Note(Cause::kNoFolders);
            return true;
        case FilesState::kBeingRead:
            Note(Cause::kFilesBeingRead);
            return false;
        default:
            Note(Cause::kFilesNotRead);
            return mayRead;
    }
}

LYRSysTSInterfaceFactory DictionarySearch::Find() {
    // Each of the look-ups asks for the dictionary files by itself: without a path to them, each
    // says so again. But what has just failed is not tried again at once.
    const short load = _filesAreRead && MayRemember() ? 1 : 0;
    const GUID* const clsid = _asked.GetClassId();
    const EntryCopy known = clsid != nullptr ? EntryCopy::Of(*clsid, _iid, load) : EntryCopy{};
    // What stands under this id is a meta-object, and no factory.
    if (_iid == CLSID_LYRSysTSMetaClass) return nullptr;
    if (known.creator == nullptr) return FindByNames(clsid, load);
    Note(known.library != nullptr ? Cause::kKnownAnswer : Cause::kNoLibrary, known.library);
    return known.library != nullptr ? known.creator : nullptr;
}

LYRSysTSInterfaceFactory DictionarySearch::FindByNames(const GUID* clsid, short load) {
    const char* const interfaceName = _interfaceName = InterfaceName(_iid, load);
    if (interfaceName == nullptr && _filesAreRead) Note(Cause::kIdWithoutName);
    const EntryCopy entry = EntryCopy::Of(_asked.IsA(), interfaceName, load);
    if (entry.record == nullptr) {
        if (interfaceName != nullptr) Note(Cause::kNoEntry);
        return nullptr;
    }
    Note(Cause::kEntryFound, entry.library, entry.leaf != nullptr ? entry.leaf : entry.extension);
    if (entry.library == nullptr) {
        Note(Cause::kNoLibrary);
        return nullptr;
    }
    if (entry.leaf != nullptr && !LeafImplements(entry.leaf)) return nullptr;
    if (entry.extension != nullptr && !Extends(entry)) return nullptr;

    const LYRSysTSInterfaceFactory factory = FindEntryPoint(entry, interfaceName);
    if (factory != nullptr && clsid != nullptr && MayRemember()) {
        LYRSysTSDictionary::AddDictionaryTS(*clsid, _iid, factory, entry.record);
    }
    return factory;
}

void DictionarySearch::Note(Cause cause, const char* library, const char* other,
                            const char* symbol) const {
    if (_notes == nullptr) return;
    _notes->Add(cause, _asked.IsA(), _interfaceName, library, other, symbol);
}

bool DictionarySearch::MayRemember() const {
    return _notes == nullptr || _notes->MayRemember();
}

/// Whether the leaf interface is derived from the one that is asked for.
bool DictionarySearch::LeafImplements(const char* leaf) const {
    const LYRSysTSMetaClass* const metaObject = LYRSysTSDictionary::QueryMetaObject(leaf);
    if (metaObject != nullptr && metaObject->IsAKindOf(_iid) != 0) return true;
    Note(metaObject == nullptr ? Cause::kUnknownLeaf : Cause::kLeafNotDerived, nullptr, leaf);
    return false;
}

/// Whether the entry's extension extends the class. The library that makes it may be loading in
/// another thread, with this class still to be named.
bool DictionarySearch::Extends(const EntryCopy& entry) {
    LYRSysTSMetaClassBase* const metaObject = FindOrLoadClass(entry.extension, entry.library);
    if (metaObject == nullptr) return false;
    LYRSysTSMetaClassExt* const extension = metaObject->CastToMetaExtension();
    if (extension == nullptr) {
        Note(Cause::kNotAnExtension, entry.library, entry.extension);
        return false;
    }
    if (Lists(*extension)) return true;
    Patience patience;
    while (MayRemember() && MayHaveBeenLoading() && patience.Wait()) {
        if (Lists(*extension)) return true;
    }
    Note(Cause::kNotExtended, entry.library, entry.extension);
    return false;
}

bool DictionarySearch::Lists(LYRSysTSMetaClassExt& extension) {
    BeginLook();
    if (extension.IsExtensionOf(&_asked)) return true;
    if (extension.LacksNames()) OnShortage();
    return false;
}

/// The class, loading the library that is said to make its meta-object if there is none yet.
LYRSysTSMetaClassBase* DictionarySearch::FindOrLoadClass(const char* name, const char* library) {
    if (LYRSysTSMetaClassBase* const found = FindClass(name)) return found;
    void* const handle = Load(library, nullptr, [=, this](bool& mayPass) {
        return LYRThrLibraryManager::TryLoadLibrary(library, mayPass, _notes);
    });
    if (handle == nullptr) return nullptr;
    LYRSysTSMetaClassBase* const found = FindClass(name);
    if (found == nullptr) Note(Cause::kUnknownExtension, library, name);
    return found;
}

LYRSysTSInterfaceFactory DictionarySearch::FindEntryPoint(const EntryCopy& entry,
                                                          const char* interfaceName) {
    const auto name = EntryPointName(entry, interfaceName, _asked.IsA());
    if (!name) {
        OnShortage();
        return nullptr;
    }
    const char* const symbol = name->c_str();
    void* const address = Load(entry.library, symbol, [&](bool& mayPass) {
        return LYRThrLibraryManager::TryGetFunctionAddress(entry.library, symbol, mayPass, _notes);
    });
    if (address != nullptr) Note(Cause::kAnswered, entry.library, nullptr, symbol);
    return ToFunction<LYRSysTSInterfaceFactory>(address);
}

/// What the library manager answers, which may load a library for it.
template <typename Ask>
void* DictionarySearch::Load(const char* library, const char* symbol, Ask ask) {
    if (MayHaveBeenLoading()) _metLoading = true;
    bool mayPass = false;
    void* const answer = ask(mayPass);
    if (mayPass) OnShortage();
    if (_notes != nullptr) {
        _notes->AddLoad(answer, _asked.IsA(), _interfaceName, library, symbol);
    }
    BeginLook();
    return answer;
}

void DictionarySearch::OnShortage() {
    Note(Cause::kNoMemory);
    _mayPass = true;
}

void DictionarySearch::BeginLook() {
    _loads = LYRThrLibraryManager::MarkLoads();
}

bool DictionarySearch::MayHaveBeenLoading() const {
    return LYRThrLibraryManager::MayHaveBeenLoadingSince(_loads);
}

}  // namespace lyr::internal
