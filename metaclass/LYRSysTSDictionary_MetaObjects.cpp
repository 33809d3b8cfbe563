#include "LYRSysTSDictionary.h"
#include "LYRSysTSFindOrCreateMetaObject.h"
#include "LYRSysTSKnownIds.h"
#include "dictionary/Addition.h"
#include "metaclass/ToExtension.h"
#include "registries/Intern.h"
#include "support/AddressCast.h"
#include "support/MutexGuard.h"
#include "support/Shortage.h"
#include "support/Text.h"

#include <memory>
#include <new>

namespace {

/// An id that no other class of this process has. Throws std::bad_alloc.
const GUID* MakeUpClassId() {
    static std::atomic<std::uint32_t> count = 0;
    const GUID clsid = {++count, 0, 0, {}};
    return lyr::internal::InternGUID(&clsid);
}

LYRSysTSMetaClassBase* MakeMetaObject(const char* name, LYRSysTSTypeOfClass type, const GUID* clsid,
                                      LYRSysTSMetaClass* base) {
    switch (type) {
        case ImplementationClass:
            return new LYRSysTSMetaClassImpl(clsid, name, base);
        case KeptExtension:
        case TransientExtension:
            return new LYRSysTSMetaClassExt(clsid, name, base, type);
        default:
            return new LYRSysTSMetaClassBase(clsid, name, base);
    }
}

}  // namespace

LYRSysTSMetaClass* LYRSysTSDictionary::CreateMetaObject(const char* name, LYRSysTSTypeOfClass type,
                                                        const GUID* clsid, LYRSysTSMetaClass* base,
                                                        lyr::internal::Refusals& refusals) {
    if (clsid == nullptr) clsid = MakeUpClassId();
    std::unique_ptr<LYRSysTSMetaClassBase, void (*)(LYRSysTSMetaClassBase*)> made(
        MakeMetaObject(name, type, clsid, base), &LYRSysTSMetaClassBase::Discard);
    if (_DictionaryDeleted) return made.release();

    lyr::internal::DictionaryTables::EnsureCleared();
    const LYRSysTSInterfaceFactory creator = lyr::internal::ToCreator(made.get());
    lyr::internal::PairedAddition both{{*clsid, CLSID_LYRSysTSMetaClass, creator},
                                       {name, "MetaObject", nullptr, nullptr, nullptr, creator}};
    both.Make(refusals);
    return made.release();
}

LYRSysTSMetaClass* LYRSysTSDictionary::FindOrCreateMetaObject(const char* name,
                                                              LYRSysTSTypeOfClass type,
                                                              const GUID* clsid,
                                                              LYRSysTSMetaClass* base,
                                                              const char* extendedName) {
    if (name == nullptr || lyr::internal::SameText(name, "LYRNull")) return nullptr;
    lyr::internal::Refusals refusals;
    const lyr::internal::MutexGuard guard(*GetGlobalDicoMutex());
    LYRSysTSMetaClass* metaObject = QueryMetaObject(name);
    if (metaObject == nullptr) metaObject = CreateMetaObject(name, type, clsid, base, refusals);
    LYRSysTSMetaClassExt* const extension = lyr::internal::ToExtension(metaObject);
    if (extension != nullptr && !extension->TryToList(extendedName)) throw std::bad_alloc();
    return metaObject;
}

const GUID* LYRSysTSDictionary::_CreateCLSID() {
    return lyr::internal::RefuseOnShortage(nullptr, [] { return MakeUpClassId(); });
}

LYRSysTSMetaClass* LYRSysTSFindOrCreateMetaObject(const char* name, LYRSysTSTypeOfClass type,
                                                  const GUID* clsid, LYRSysTSMetaClass* base,
                                                  const char* extendedName) {
    return LYRSysTSDictionary::FindOrCreateMetaObject(name, type, clsid, base, extendedName);
}
