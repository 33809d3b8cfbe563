#include "LYRSysTSDicoIIDName.h"

#include "registries/Intern.h"
#include "registries/SignedKeys.h"
#include "support/GuidBytes.h"
#include "support/IndexedTable.h"
#include "support/MutexGuard.h"
#include "support/Shortage.h"
#include "support/StartUpOrder.h"
#include "support/Text.h"
#include "support/TextHash.h"

constinit IIDNameLink* LYRSysTSDicoIIDName::_IIDNameByIID[1024] = {};
constinit IIDNameLink* LYRSysTSDicoIIDName::_IIDNameByName[1024] = {};
constinit std::atomic<bool> LYRSysTSDicoIIDName::_DictionaryCleared = false;

constinit LYRSmartMutex* IidMutextToForceInitDuringDllLoading = nullptr;

LYRSmartMutex* GetGlobalIIDDicoMutex() {
    static LYRSmartMutex mutexDicoIID(0);
    return &mutexDicoIID;
}

namespace {

using Table =
    lyr::internal::IndexedTable<IIDNameRecord, IIDNameLink, 1024, lyr::internal::Readers::kAny>;

// Looked into without a lock: what they find never changes.
constinit Table byIID;
constinit Table byName;
constinit lyr::internal::NodePool<IIDNameRecord> records;

[[gnu::constructor(lyr::internal::kStartIIDMutex)]] void MakeIIDMutex() {
    IidMutextToForceInitDuringDllLoading = GetGlobalIIDDicoMutex();
}

IIDNameRecord* FindIID(const GUID& iid, std::size_t hash) {
    return byIID.index.Find(hash, [&](const IIDNameRecord& record) { return *record.iid == iid; });
}

IIDNameRecord* FindName(const char* name, std::size_t hash) {
    return byName.index.Find(hash, [=](const IIDNameRecord& record) {
        return lyr::internal::SameText(record.interfaceName, name);
    });
}

}  // namespace

int LYRSysTSDicoIIDName::AddDicoIIDName(const GUID& iid, const char* name) {
    if (name == nullptr) return 0;
    if (!_DictionaryCleared) _ClearDictionary();

    const lyr::internal::HashedText text(name);
    const std::size_t iidHash = lyr::internal::GuidHash(iid);
    const unsigned iidKey = lyr::internal::SignedKey(iid);
    const unsigned nameKey = lyr::internal::SignedKey({name, text.length});
    byName.Prefetch(nameKey, text.hash);
    byIID.Prefetch(iidKey, iidHash);
    lyr::internal::PrefetchText(text);
    lyr::internal::PrefetchGUID(iidHash);
    if (const IIDNameRecord* const known = FindName(name, text.hash)) return *known->iid == iid;
    if (FindIID(iid, iidHash) != nullptr) return 0;

    return lyr::internal::RefuseOnShortage(0, [&] {
        const char* const internedName = lyr::internal::InternText(text);
        if (internedName == nullptr) return 0;
        const GUID* const internedId = lyr::internal::InternGUID(&iid);
        if (!byIID.Reserve() || !byName.Reserve() || !records.Reserve()) throw std::bad_alloc();
        IIDNameRecord* const record = records.Make(internedId, internedName);
        byIID.Append(_IIDNameByIID, iidKey, iidHash, record);
        byName.Append(_IIDNameByName, nameKey, text.hash, record);
        return 1;
    });
}

const char* LYRSysTSDicoIIDName::QueryDicoIIDNameByIID(const GUID& iid) {
    const IIDNameRecord* const record = FindIID(iid, lyr::internal::GuidHash(iid));
    return record != nullptr ? record->interfaceName : nullptr;
}

const GUID* LYRSysTSDicoIIDName::QueryDicoIIDNameByName(const char* name) {
    if (name == nullptr) return nullptr;
    const IIDNameRecord* const record = FindName(name, lyr::internal::TextHash(name));
    return record != nullptr ? record->iid : nullptr;
}

int LYRSysTSDicoIIDName::_ComputeKeyForIID(const GUID& iid) {
    return static_cast<int>(lyr::internal::SignedKey(iid));
}

int LYRSysTSDicoIIDName::_ComputeKeyForName(const char* name) {
    return name != nullptr ? static_cast<int>(lyr::internal::SignedKey(name)) : 0;
}

void LYRSysTSDicoIIDName::_ClearDictionary() {
    const lyr::internal::MutexGuard guard(*GetGlobalIIDDicoMutex());
    if (_DictionaryCleared) return;
    lyr::internal::ClearHeads(_IIDNameByIID);
    lyr::internal::ClearHeads(_IIDNameByName);
    _DictionaryCleared = true;
}

void LYRSysTSDicoIIDName::_FreeDictionary() {
    byName.Clear(_IIDNameByName, [](const IIDNameLink*) {});
    byIID.Clear(_IIDNameByIID, [](const IIDNameLink*) {});
    records.Clear();
}
