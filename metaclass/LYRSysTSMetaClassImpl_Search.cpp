#include "LYRSysTSDictionary.h"
#include "LYRSysTSKnownIds.h"
#include "LYRSysTSMetaClassExt.h"
#include "LYRSysTSMetaClassImpl.h"
#include "LYRThrLibraryManager.h"
#include "dictionary/EntryCopy.h"
#include "support/AddressCast.h"
#include "support/MemoryShortage.h"

#include <cerrno>
#include <new>
#include <string>

namespace {

using lyr::EntryCopy;

LYRSysTSMetaClassBase* FindClass(const char* name) {
    LYRSysTSMetaClass* const metaObject = LYRSysTSDictionary::QueryMetaObject(name);
    return metaObject != nullptr ? metaObject->ToMetaClassBase() : nullptr;
}

/// What was asked of a library. An absence for lack of memory, which may pass, is counted.
void* Counted(void* answer) {
    if (answer == nullptr && errno == ENOMEM) ++lyr::memoryShortages;
    return answer;
}

/// The class, loading the library that is said to make its meta-object if there is none yet.
LYRSysTSMetaClassBase* FindOrLoadClass(const char* name, const char* library) {
    LYRSysTSMetaClassBase* const found = FindClass(name);
    if (found != nullptr || library == nullptr) return found;
    return Counted(LYRThrLibraryManager::LoadLibrary(library)) ? FindClass(name) : nullptr;
}

/// Whether the leaf interface is derived from the one that is asked for.
bool LeafImplements(const char* leaf, const GUID& iid) {
    const LYRSysTSMetaClass* const metaObject = LYRSysTSDictionary::QueryMetaObject(leaf);
    return metaObject != nullptr && metaObject->IsAKindOf(iid) != 0;
}

bool Extends(const EntryCopy& entry, const LYRSysTSMetaClass& extended) {
    LYRSysTSMetaClassBase* const metaObject = FindOrLoadClass(entry.extension, entry.library);
    if (metaObject == nullptr) return false;
    LYRSysTSMetaClassExt* const extension = metaObject->CastToMetaExtension();
    if (extension == nullptr) return false;
    if (extension->IsExtensionOf(&extended)) return true;
    // The library that makes it may be loading in another thread, with this class still to be
    // named.
    LYRThrLibraryManager::AwaitLoads();
    return extension->IsExtensionOf(&extended);
}

LYRSysTSInterfaceFactory FindEntryPoint(const EntryCopy& entry, const char* interfaceName,
                                        const char* className) {
    std::string name("LYRSysTSCreate");
    name += entry.leaf != nullptr ? entry.leaf : interfaceName;
    name += entry.extension != nullptr ? entry.extension : className;
    return lyr::ToFunction<LYRSysTSInterfaceFactory>(
        Counted(LYRThrLibraryManager::GetFunctionAddress(entry.library, name.c_str())));
}

/// The factory that the entry by names leads to, in a library's entry point.
LYRSysTSInterfaceFactory FindByName(const LYRSysTSMetaClass& extended, const GUID& iid,
                                    const char* interfaceName, const EntryCopy& entry) {
    if (entry.leaf != nullptr && !LeafImplements(entry.leaf, iid)) return nullptr;
    if (entry.extension != nullptr && !Extends(entry, extended)) return nullptr;
    if (entry.library == nullptr) return nullptr;
    return FindEntryPoint(entry, interfaceName, extended.IsA());
}

}  // namespace

// Each of the look-ups asks for the dictionary files by itself: without a path to them, each says
// so again.
LYRSysTSInterfaceFactory LYRSysTSMetaClassImpl::_QueryFromDictionary(const GUID& iid) const {
    LYRSysTSDictionary::EnsureInitDictionary();
    const GUID* const clsid = GetClassId();
    if (clsid != nullptr) {
        const EntryCopy known = EntryCopy::Of(*clsid, iid);
        if (known.creator != nullptr && iid != CLSID_LYRSysTSMetaClass) {
            return known.library != nullptr ? known.creator : nullptr;
        }
    }
    // What stands under this id is a meta-object, and no factory.
    if (iid == CLSID_LYRSysTSMetaClass) return nullptr;

    const char* const interfaceName = LYRSysTSDictionary::GetInterfaceName(iid);
    const EntryCopy entry = EntryCopy::Of(IsA(), interfaceName);
    if (entry.record == nullptr) return nullptr;
    try {
        const LYRSysTSInterfaceFactory factory = FindByName(*this, iid, interfaceName, entry);
        if (factory != nullptr && clsid != nullptr) {
            LYRSysTSDictionary::AddDictionaryTS(*clsid, iid, factory, entry.record);
        }
        return factory;
    } catch (const std::bad_alloc&) {
        ++lyr::memoryShortages;
        return nullptr;
    }
}
