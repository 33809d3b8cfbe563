#include "LYRSysTSDictionary.h"
#include "LYRSysTSFindOrCreateMetaObject.h"
#include "LYRSysTSKnownIds.h"
#include "dictionary/Addition.h"
#include "metaclass/ToExtension.h"
#include "registries/Intern.h"
#include "support/AddressCast.h"
#include "support/MutexGuard.h"
#include "support/Text.h"

#include <memory>
#include <new>

namespace {

/// An id that no other class of this process has. Throws std::bad_alloc.
const GUID* MakeUpClassId() {
    static std::atomic<std::uint32_t> count = 0;
    const GUID clsid = {++count, 0, 0, {}};
    return lyr::InternGUID(&clsid);
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

namespace lyr {

/// Frees the newest meta-object, which nobody else knows yet.
struct DiscardMetaObject {
    void operator()(LYRSysTSMetaClassBase* metaObject) const {
        sHeadMeta = metaObject->_nextMeta;
        delete metaObject;
    }
};

}  // namespace lyr

namespace {

/// Says at its end what the dictionary has refused, also when the caller fails later on. Stands
/// before the lock is taken, so that it ends after it.
struct Refusals {
    int count = 0;
    ~Refusals() { lyr::SayRefused(count); }
};

/// Makes the meta-object and records it by id and by name. What the dictionary refuses, such as the
/// id of another class, is left out and counted in `refusals`. Throws std::bad_alloc with nothing
/// recorded: a meta-object that is not recorded would be made once more by the next call.
LYRSysTSMetaClass* Create(const char* name, LYRSysTSTypeOfClass type, const GUID* clsid,
                          LYRSysTSMetaClass* base, int& refusals)
    LYR_REQUIRES(GetGlobalDicoMutex()) {
    if (clsid == nullptr) clsid = MakeUpClassId();
    std::unique_ptr<LYRSysTSMetaClassBase, lyr::DiscardMetaObject> made(
        MakeMetaObject(name, type, clsid, base));
    if (lyr::DictionaryTables::Deleted()) return made.release();

    lyr::DictionaryTables::EnsureCleared();
    const LYRSysTSInterfaceFactory creator = lyr::ToCreator(made.get());
    lyr::PairedAddition both{{*clsid, CLSID_LYRSysTSMetaClass, creator},
                             {name, "MetaObject", nullptr, nullptr, nullptr, creator}};
    both.Make(true, refusals);
    return made.release();
}

/// Has an extension's meta-object take note of a class that it extends. Throws std::bad_alloc.
void NoteExtended(LYRSysTSMetaClass* metaObject, const char* extendedName) {
    if (extendedName == nullptr) return;
    LYRSysTSMetaClassExt* const extension = lyr::ToExtension(metaObject);
    if (extension == nullptr) return;
    extension->SetExtensionOf(extendedName);
    const char* const interned = lyr::InternText(extendedName);
    if (interned != nullptr && !extension->_IsExtensionOf(interned)) throw std::bad_alloc();
}

}  // namespace

LYRSysTSMetaClass* LYRSysTSDictionary::FindOrCreateMetaObject(const char* name,
                                                              LYRSysTSTypeOfClass type,
                                                              const GUID* clsid,
                                                              LYRSysTSMetaClass* base,
                                                              const char* extendedName) {
    if (name == nullptr || lyr::SameText(name, "LYRNull")) return nullptr;
    Refusals refusals;
    const lyr::MutexGuard guard(*GetGlobalDicoMutex());
    LYRSysTSMetaClass* metaObject = QueryMetaObject(name);
    if (metaObject == nullptr) metaObject = Create(name, type, clsid, base, refusals.count);
    NoteExtended(metaObject, extendedName);
    return metaObject;
}

const GUID* LYRSysTSDictionary::_CreateCLSID() {
    try {
        return MakeUpClassId();
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

LYRSysTSMetaClass* LYRSysTSFindOrCreateMetaObject(const char* name, LYRSysTSTypeOfClass type,
                                                  const GUID* clsid, LYRSysTSMetaClass* base,
                                                  const char* extendedName) {
    return LYRSysTSDictionary::FindOrCreateMetaObject(name, type, clsid, base, extendedName);
}
