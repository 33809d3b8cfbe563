#include "LYRSysTSDictionary.h"

#include "dictionary/DictionaryTables.h"
#include "support/GuidBytes.h"
#include "support/MutexGuard.h"
#include "support/StartUpOrder.h"
#include "support/Text.h"
#include "support/TextHash.h"

#include <bit>
#include <memory>
#include <new>

constinit DicEntryLink* LYRSysTSDictionary::_dicByName[lyr::internal::kPairBuckets] = {};
constinit DicEntryLink* LYRSysTSDictionary::_dicByGUID[lyr::internal::kPairBuckets] = {};
constinit std::atomic<bool> LYRSysTSDictionary::_DictionaryCleared = false;
constinit std::atomic<bool> LYRSysTSDictionary::_DictionaryDeleted = false;
constinit ReadFileLink** LYRSysTSDictionary::_readDicFiles = nullptr;

constinit LYRSmartMutex* StaticDicoMutextToForceInitDuringDllLoading = nullptr;

LYRSmartMutex* GetGlobalDicoMutex() {
    static LYRSmartMutex mutexGlobal(0);
    return &mutexGlobal;
}

namespace {

[[gnu::constructor(lyr::internal::kStartDicoMutex)]] void MakeDicoMutex() {
    StaticDicoMutextToForceInitDuringDllLoading = GetGlobalDicoMutex();
}

}  // namespace

void LYRSysTSDictionary::_ClearDictionary() {
    const lyr::internal::MutexGuard guard(*GetGlobalDicoMutex());
    if (_DictionaryCleared) return;
    lyr::internal::ClearHeads(_dicByName);
    lyr::internal::ClearHeads(_dicByGUID);
    _DictionaryCleared = true;
}

void LYRSysTSDictionary::_DeleteDictionary() {
    using Tables = lyr::internal::DictionaryTables;
    if (!_DictionaryCleared || _DictionaryDeleted.exchange(true)) return;
    {
        // A record with a class name is left to the table by name.
        const lyr::internal::MutexGuard guard(*GetGlobalDicoMutex());
        Tables::byGUID.Clear([](LYRSysTSInfoDic* record) LYR_REQUIRES(GetGlobalDicoMutex()) {
            if (record != nullptr && record->className == nullptr) Tables::Dispose(record);
        });
    }
    const lyr::internal::MutexGuard guard(*GetGlobalDicoMutex());
    Tables::byName.Clear(&Tables::Dispose);
    Tables::records.Clear();
    Tables::unused = nullptr;
}

namespace lyr::internal {

constinit EntryTable DictionaryTables::byName{LYRSysTSDictionary::_dicByName};
constinit EntryTable DictionaryTables::byGUID{LYRSysTSDictionary::_dicByGUID};
constinit NodePool<LYRSysTSInfoDic> DictionaryTables::records;
constinit LYRSysTSInfoDic* DictionaryTables::unused = nullptr;

LYRSysTSInfoDic* DictionaryTables::UnusedRecord() {
    if (unused != nullptr) return unused;
    if (!records.Reserve()) throw std::bad_alloc();
    unused = records.Make();
    return unused;
}

void DictionaryTables::Dispose(LYRSysTSInfoDic* record) {
    if (!records.Holds(record)) return delete record;
    std::destroy_at(record);
}

std::size_t DictionaryTables::Hash(const HashedText& className, const HashedText& interfaceName) {
    return className.hash ^ std::rotl(interfaceName.hash, 21);
}

std::size_t DictionaryTables::Hash(const GUID& clsid, const GUID& iid) {
    return GuidHash(clsid) ^ std::rotl(GuidHash(iid), 21);
}

LYRSysTSInfoDic* DictionaryTables::Find(std::size_t hash, const char* className,
                                        const char* interfaceName) {
    return byName.beside.index.Find(hash, [=](const LYRSysTSInfoDic& record) {
        return SameText(record.className, className) &&
               SameText(record.interfaceName, interfaceName);
    });
}

LYRSysTSInfoDic* DictionaryTables::Find(std::size_t hash, const GUID& clsid, const GUID& iid) {
    return byGUID.beside.index.Find(hash, [&](const LYRSysTSInfoDic& record) {
        return *record.clsid == clsid && *record.iid == iid;
    });
}

}  // namespace lyr::internal
