#include "LYRSysTSDictionary.h"
#include "LYRSysTSFindOrCreateMetaObject.h"
#include "LYRSysTSKnownIds.h"
#include "LYRSysTSMetaClassExt.h"
#include "dictionary/Addition.h"
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

/// Frees a meta-object, the newest one, that nothing has come to know.
struct DiscardMetaObject {
    void operator()(LYRSysTSMetaClassBase* metaObject) const {
        sHeadMeta = metaObject->_nextMeta;
        delete metaObject;
    }
};

}  // namespace lyr

namespace {

/// Makes the meta-object and records it by id and by name, in `entry` if there is one by name
/// already. What the dictionary refuses, such as the id of another class, is left out and counted
/// in `refusals`. Throws std::bad_alloc with nothing changed: a meta-object that is not recorded
/// would be made once more by the next call.
LYRSysTSMetaClass* Create(const char* name, LYRSysTSTypeOfClass type, const GUID* clsid,
                          LYRSysTSMetaClass* base, LYRSysTSInfoDic* entry, int& refusals)
    LYR_REQUIRES(GetGlobalDicoMutex()) {
    if (clsid == nullptr) clsid = MakeUpClassId();
    std::unique_ptr<LYRSysTSMetaClassBase, lyr::DiscardMetaObject> made(
        MakeMetaObject(name, type, clsid, base));
    if (lyr::DictionaryTables::Deleted()) return made.release();

    lyr::DictionaryTables::EnsureCleared();
    const LYRSysTSInterfaceFactory creator = lyr::ToCreator(made.get());
    lyr::Addition byId(*clsid, CLSID_LYRSysTSMetaClass, creator);
    lyr::Addition byName(name, "MetaObject", nullptr, nullptr, nullptr, creator);
    if (!byId.Prepare(entry)) ++refusals;
    if (!byName.Prepare(byId.Record())) ++refusals;
    byId.Commit();
    byName.Commit();
    return made.release();
}

}  // namespace

LYRSysTSMetaClass* LYRSysTSDictionary::FindOrCreateMetaObject(const char* name,
                                                              LYRSysTSTypeOfClass type,
                                                              const GUID* clsid,
                                                              LYRSysTSMetaClass* base,
                                                              const char* extendedName) {
    if (name == nullptr || lyr::SameText(name, "LYRNull")) return nullptr;
    int refusals = 0;
    LYRSysTSMetaClass* metaObject = nullptr;
    {
        const lyr::MutexGuard guard(*GetGlobalDicoMutex());
        LYRSysTSInfoDic* const entry = QueryDictionary(name, "MetaObject", 0);
        if (entry != nullptr) metaObject = lyr::ToMetaObject(entry->creator);
        if (metaObject == nullptr) {
            metaObject = Create(name, type, clsid, base, entry, refusals);
        }
        LYRSysTSMetaClassExt::AddExtendedComponent(metaObject, extendedName);
    }
    for (; refusals > 0; --refusals) lyr::SayRefused();
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
