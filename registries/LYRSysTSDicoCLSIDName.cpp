#include "LYRSysTSDicoCLSIDName.h"

#include "LYRSysTSDictionary.h"
#include "registries/Intern.h"
#include "registries/SignedKeys.h"
#include "support/Chain.h"
#include "support/MutexGuard.h"
#include "support/Shortage.h"
#include "support/StartUpOrder.h"
#include "support/Text.h"

#include <memory>

constinit CLSIDNameLink* LYRSysTSDicoCLSIDName::_CLSIDNameByCLSID[1024] = {};
constinit std::atomic<bool> LYRSysTSDicoCLSIDName::_DictionaryCleared = false;

constinit LYRSmartMutex* ClsidMutextToForceInitDuringDllLoading = nullptr;

LYRSmartMutex* GetGlobalCLSIDDicoMutex() {
    static LYRSmartMutex mutexDicoCLSID(0);
    return &mutexDicoCLSID;
}

namespace {

[[gnu::constructor(lyr::kStartCLSIDMutex)]] void MakeCLSIDMutex() {
    ClsidMutextToForceInitDuringDllLoading = GetGlobalCLSIDDicoMutex();
}

lyr::ChainSlot<CLSIDNameLink> FindCLSID(CLSIDNameLink*& head, const GUID& clsid) {
    return lyr::FindSlot(head,
                         [&](const CLSIDNameLink& link) { return *link.record->clsid == clsid; });
}

/// Whether a class given once more is the one that is known. A library that is missing on either
/// side contradicts nothing.
bool IsSameClass(const CLSIDNameRecord& known, const char* name, const char* library) {
    if (!lyr::SameText(known.className, name)) return false;
    if (library == nullptr || known.library == nullptr) return true;
    return lyr::SameText(known.library, library);
}

}  // namespace

CLSIDNameRecord* LYRSysTSDicoCLSIDName::AddDicoCLSIDName(const GUID& clsid, const char* name,
                                                         const char* library) {
    if (name == nullptr) return nullptr;
    if (!_DictionaryCleared) _ClearDictionary();

    const auto slot = FindCLSID(_CLSIDNameByCLSID[lyr::SignedKey(clsid)], clsid);
    if (slot.link != nullptr) {
        CLSIDNameRecord* const known = slot.link->record;
        return IsSameClass(*known, name, library) ? known : nullptr;
    }

    return lyr::RefuseOnShortage(nullptr, [&]() -> CLSIDNameRecord* {
        const char* const internedName = lyr::InternText(name);
        const char* const internedLibrary = lyr::InternText(library);
        if (internedName == nullptr) return nullptr;
        if (library != nullptr && internedLibrary == nullptr) return nullptr;
        auto record = std::make_unique<CLSIDNameRecord>(
            CLSIDNameRecord{lyr::InternGUID(&clsid), internedName, internedLibrary});
        auto link = std::make_unique<CLSIDNameLink>(CLSIDNameLink{record.get(), nullptr});
        lyr::StoreShared(*slot.place, link.release());
        return record.release();
    });
}

CLSIDNameRecord* LYRSysTSDicoCLSIDName::QueryDicoCLSIDNameByCLSID(const GUID& clsid) {
    LYRSysTSDictionary::EnsureInitDictionary();
    const auto slot = FindCLSID(_CLSIDNameByCLSID[lyr::SignedKey(clsid)], clsid);
    return slot.link != nullptr ? slot.link->record : nullptr;
}

int LYRSysTSDicoCLSIDName::_ComputeKeyForCLSID(const GUID& clsid) {
    return static_cast<int>(lyr::SignedKey(clsid));
}

void LYRSysTSDicoCLSIDName::_ClearDictionary() {
    const lyr::MutexGuard guard(*GetGlobalCLSIDDicoMutex());
    if (_DictionaryCleared) return;
    lyr::ClearHeads(_CLSIDNameByCLSID);
    _DictionaryCleared = true;
}

void LYRSysTSDicoCLSIDName::_FreeDictionary() {
    lyr::FreeChains(std::span(_CLSIDNameByCLSID), [](CLSIDNameLink* link) {
        delete link->record;
        delete link;
    });
}
