#include "LYRSysTSDicoCLSIDName.h"

#include "LYRSysTSDictionary.h"
#include "registries/ClassRecord.h"
#include "registries/Intern.h"
#include "registries/SignedKeys.h"
#include "support/GuidBytes.h"
#include "support/IndexedTable.h"
#include "support/MutexGuard.h"
#include "support/Shortage.h"
#include "support/StartUpOrder.h"
#include "support/Text.h"

#include <new>

constinit CLSIDNameLink* LYRSysTSDicoCLSIDName::_CLSIDNameByCLSID[1024] = {};
constinit std::atomic<bool> LYRSysTSDicoCLSIDName::_DictionaryCleared = false;

constinit LYRSmartMutex* ClsidMutextToForceInitDuringDllLoading = nullptr;

LYRSmartMutex* GetGlobalCLSIDDicoMutex() {
    static LYRSmartMutex mutexDicoCLSID(0);
    return &mutexDicoCLSID;
}

namespace {

// Looked into without a lock: what it finds never changes.
constinit lyr::internal::IndexedTable<CLSIDNameRecord, CLSIDNameLink, 1024,
                                      lyr::internal::Readers::kAny>
    table;
constinit lyr::internal::NodePool<CLSIDNameRecord> records;

CLSIDNameRecord* Find(const GUID& clsid, std::size_t hash) {
    return table.index.Find(hash,
                            [&](const CLSIDNameRecord& record) { return *record.clsid == clsid; });
}

[[gnu::constructor(lyr::internal::kStartCLSIDMutex)]] void MakeCLSIDMutex() {
    ClsidMutextToForceInitDuringDllLoading = GetGlobalCLSIDDicoMutex();
}

/// Whether a class given once more is the one that is known. A library that is missing on either
/// side contradicts nothing.
bool IsSameClass(const CLSIDNameRecord& known, const char* name, const char* library) {
    if (!lyr::internal::SameText(known.className, name)) return false;
    if (library == nullptr || known.library == nullptr) return true;
    return lyr::internal::SameText(known.library, library);
}

}  // namespace

CLSIDNameRecord* LYRSysTSDicoCLSIDName::AddDicoCLSIDName(const GUID& clsid, const char* name,
                                                         const char* library) {
    if (name == nullptr) return nullptr;
    if (!_DictionaryCleared) _ClearDictionary();

    const std::size_t hash = lyr::internal::GuidHash(clsid);
    const unsigned key = lyr::internal::SignedKey(clsid);
    const lyr::internal::HashedText nameText(name);
    table.Prefetch(key, hash);
    lyr::internal::PrefetchText(nameText);
    lyr::internal::PrefetchGUID(hash);
    if (CLSIDNameRecord* const known = Find(clsid, hash)) {
        return IsSameClass(*known, name, library) ? known : nullptr;
    }
    return lyr::internal::RefuseOnShortage(nullptr, [&]() -> CLSIDNameRecord* {
        const char* const internedName = lyr::internal::InternText(nameText);
        const char* const internedLibrary = lyr::internal::InternText(library);
        if (internedName == nullptr) return nullptr;
        if (library != nullptr && internedLibrary == nullptr) return nullptr;
        const GUID* const internedId = lyr::internal::InternGUID(&clsid);
        if (!table.Reserve() || !records.Reserve()) throw std::bad_alloc();
        CLSIDNameRecord* const record = records.Make(internedId, internedName, internedLibrary);
        table.Append(_CLSIDNameByCLSID, key, hash, record);
        return record;
    });
}

CLSIDNameRecord* LYRSysTSDicoCLSIDName::QueryDicoCLSIDNameByCLSID(const GUID& clsid) {
    LYRSysTSDictionary::EnsureInitDictionary();
    return Find(clsid, lyr::internal::GuidHash(clsid));
}

const CLSIDNameRecord* lyr::internal::KnownClass(const GUID& clsid) {
    return Find(clsid, GuidHash(clsid));
}

int LYRSysTSDicoCLSIDName::_ComputeKeyForCLSID(const GUID& clsid) {
    return static_cast<int>(lyr::internal::SignedKey(clsid));
}

void LYRSysTSDicoCLSIDName::_ClearDictionary() {
    const lyr::internal::MutexGuard guard(*GetGlobalCLSIDDicoMutex());
    if (_DictionaryCleared) return;
    lyr::internal::ClearHeads(_CLSIDNameByCLSID);
    _DictionaryCleared = true;
}

void LYRSysTSDicoCLSIDName::_FreeDictionary() {
    table.Clear(_CLSIDNameByCLSID, [](const CLSIDNameLink*) {});
    records.Clear();
}
