#include "LYRSysTSDicoIIDName.h"
#include "LYRSysTSDictionary.h"
#include "LYRSysTSKnownIds.h"
#include "LYRSysTSMetaClass.h"
#include "dictionary/Addition.h"
#include "dictionary/DictionaryTables.h"
#include "dictionary/InterfaceName.h"
#include "dictionary/PairKey.h"
#include "support/ByteSum.h"
#include "support/GuidBytes.h"
#include "support/MutexGuard.h"
#include "support/Shortage.h"

namespace {

std::uint32_t IdSum(const GUID* id) {
    return id != nullptr
               ? lyr::internal::WeightedByteSum<signed char>(lyr::internal::GuidBytes(*id), 1)
               : 0;
}

}  // namespace

int LYRSysTSDictionary::_ComputeHashKey(const GUID* a, const GUID* b) {
    return lyr::internal::PairBucket(IdSum(a), IdSum(b));
}

LYRSysTSInfoDic* LYRSysTSDictionary::AddDictionaryTS(const GUID& clsid, const GUID& iid,
                                                     LYRSysTSInterfaceFactory creator,
                                                     LYRSysTSInfoDic* info) {
    if (creator == nullptr) return nullptr;
    lyr::internal::Addition addition(clsid, iid, creator);
    return lyr::internal::Add(addition, info);
}

LYRSysTSInfoDic* LYRSysTSDictionary::AddDictionaryTS(const GUID* clsid, const GUID* iid,
                                                     const char* className,
                                                     const char* interfaceName,
                                                     const char* sharedLibrary,
                                                     LYRSysTSInterfaceFactory creator, short load) {
    if (_DictionaryDeleted) return nullptr;
    const bool hasIds = clsid != nullptr && iid != nullptr;
    const bool hasNames = className != nullptr && interfaceName != nullptr;
    if (!hasNames) return hasIds ? AddDictionaryTS(*clsid, *iid, creator, nullptr) : nullptr;
    if (hasIds && load == 1) EnsureInitDictionary();
    if (!hasIds || creator == nullptr) {
        return AddDictionaryTS(className, interfaceName, sharedLibrary, nullptr, nullptr, creator,
                               nullptr);
    }

    lyr::internal::DictionaryTables::EnsureCleared();
    lyr::internal::PairedAddition both{
        {*clsid, *iid, creator},
        {className, interfaceName, sharedLibrary, nullptr, nullptr, creator}};
    lyr::internal::Refusals refusals;
    const lyr::internal::MutexGuard guard(*GetGlobalDicoMutex());
    if (_DictionaryDeleted) return nullptr;
    const auto make = [&]() LYR_REQUIRES(GetGlobalDicoMutex()) {
        both.Make(refusals);
        return true;
    };
    if (!lyr::internal::RefuseOnShortage(false, make)) refusals.Add(both.byNames);
    return both.byNames.Record();
}

LYRSysTSInfoDic* LYRSysTSDictionary::QueryDictionary(const GUID& clsid, const GUID& iid,
                                                     short load) {
    using Tables = lyr::internal::DictionaryTables;
    return Tables::ReadEntry(clsid, iid, load, &Tables::Record);
}

LYRSysTSMetaClass* LYRSysTSDictionary::QueryMetaObject(const GUID& clsid) {
    using Tables = lyr::internal::DictionaryTables;
    return Tables::ReadEntry(clsid, CLSID_LYRSysTSMetaClass, 1, &Tables::MetaObject);
}

const char* LYRSysTSDictionary::GetInterfaceName(const GUID& iid) {
    return lyr::internal::InterfaceName(iid, 1);
}

const char* lyr::internal::InterfaceName(const GUID& id, short load) {
    using Tables = DictionaryTables;
    const LYRSysTSMetaClass* const metaObject =
        Tables::ReadEntry(id, CLSID_LYRSysTSMetaClass, load, &Tables::MetaObject);
    const char* const name = metaObject != nullptr ? metaObject->IsA() : nullptr;
    return name != nullptr ? name : LYRSysTSDicoIIDName::QueryDicoIIDNameByIID(id);
}
