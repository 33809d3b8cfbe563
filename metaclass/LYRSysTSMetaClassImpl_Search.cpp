#include "LYRSysTSDictionary.h"
#include "LYRSysTSKnownIds.h"
#include "LYRSysTSMetaClassExt.h"
#include "LYRSysTSMetaClassImpl.h"
#include "LYRThrLibraryManager.h"
#include "support/AddressCast.h"
#include "support/MemoryShortage.h"
#include "support/SharedField.h"

#include <cerrno>
#include <new>
#include <string>

namespace {

/// What a name entry says, each field read once: another thread may be filling the record.
struct Implementer {
    const char* library;
    const char* leaf;
    const char* extension;

    explicit Implementer(const LYRSysTSInfoDic& entry)
        : library(lyr::LoadShared(entry.sharedLibrary)),
          leaf(lyr::LoadShared(entry.itfLeaf)),
          extension(lyr::LoadShared(entry.extendedBy)) {}
};

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

bool Extends(const Implementer& implementer, const LYRSysTSMetaClass& extended) {
    LYRSysTSMetaClassBase* const metaObject =
        FindOrLoadClass(implementer.extension, implementer.library);
    if (metaObject == nullptr) return false;
    LYRSysTSMetaClassExt* const extension = metaObject->CastToMetaExtension();
    if (extension == nullptr) return false;
    if (extension->IsExtensionOf(&extended)) return true;
    // The library that makes it may be loading in another thread, with this class still to be
    // named.
    LYRThrLibraryManager::AwaitLoads();
    return extension->IsExtensionOf(&extended);
}

LYRSysTSInterfaceFactory FindEntryPoint(const Implementer& implementer, const char* interfaceName,
                                        const char* className) {
    std::string name("LYRSysTSCreate");
    name += implementer.leaf != nullptr ? implementer.leaf : interfaceName;
    name += implementer.extension != nullptr ? implementer.extension : className;
    return lyr::ToFunction<LYRSysTSInterfaceFactory>(
        Counted(LYRThrLibraryManager::GetFunctionAddress(implementer.library, name.c_str())));
}

/// The factory that the entry by names leads to, in a library's entry point.
LYRSysTSInterfaceFactory FindByName(const LYRSysTSMetaClass& extended, const GUID& iid,
                                    const char* interfaceName, const LYRSysTSInfoDic& entry) {
    const Implementer implementer(entry);
    if (implementer.leaf != nullptr && !LeafImplements(implementer.leaf, iid)) return nullptr;
    if (implementer.extension != nullptr && !Extends(implementer, extended)) return nullptr;
    if (implementer.library == nullptr) return nullptr;
    return FindEntryPoint(implementer, interfaceName, extended.IsA());
}

}  // namespace

// Each of the look-ups asks for the dictionary files by itself: without a path to them, each says
// so again.
LYRSysTSInterfaceFactory LYRSysTSMetaClassImpl::_QueryFromDictionary(const GUID& iid) const {
    LYRSysTSDictionary::EnsureInitDictionary();
    const GUID* const clsid = GetClassId();
    if (clsid != nullptr) {
        const auto* const known = LYRSysTSDictionary::QueryDictionary(*clsid, iid, 1);
        const LYRSysTSInterfaceFactory creator = known != nullptr ? known->creator.load() : nullptr;
        if (creator != nullptr && iid != CLSID_LYRSysTSMetaClass) {
            return lyr::LoadShared(known->sharedLibrary) != nullptr ? creator : nullptr;
        }
    }
    // What stands under this id is a meta-object, and no factory.
    if (iid == CLSID_LYRSysTSMetaClass) return nullptr;

    const char* const interfaceName = LYRSysTSDictionary::GetInterfaceName(iid);
    LYRSysTSInfoDic* const entry = LYRSysTSDictionary::QueryDictionary(IsA(), interfaceName, 1);
    if (entry == nullptr) return nullptr;
    try {
        const LYRSysTSInterfaceFactory factory = FindByName(*this, iid, interfaceName, *entry);
        if (factory != nullptr && clsid != nullptr) {
            LYRSysTSDictionary::AddDictionaryTS(*clsid, iid, factory, entry);
        }
        return factory;
    } catch (const std::bad_alloc&) {
        ++lyr::memoryShortages;
        return nullptr;
    }
}
