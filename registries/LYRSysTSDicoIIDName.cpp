#include "LYRSysTSDicoIIDName.h"

#include "registries/Intern.h"
#include "registries/SignedKeys.h"
#include "support/Chain.h"
#include "support/MutexGuard.h"
#include "support/Shortage.h"
#include "support/StartUpOrder.h"
#include "support/Text.h"

#include <memory>

constinit IIDNameLink* LYRSysTSDicoIIDName::_IIDNameByIID[1024] = {};
constinit IIDNameLink* LYRSysTSDicoIIDName::_IIDNameByName[1024] = {};
constinit std::atomic<bool> LYRSysTSDicoIIDName::_DictionaryCleared = false;

constinit LYRSmartMutex* IidMutextToForceInitDuringDllLoading = nullptr;

LYRSmartMutex* GetGlobalIIDDicoMutex() {
    static LYRSmartMutex mutexDicoIID(0);
    return &mutexDicoIID;
}

namespace {

[[gnu::constructor(lyr::kStartIIDMutex)]] void MakeIIDMutex() {
    IidMutextToForceInitDuringDllLoading = GetGlobalIIDDicoMutex();
}

lyr::ChainSlot<IIDNameLink> FindIID(IIDNameLink*& head, const GUID& iid) {
    return lyr::FindSlot(head, [&](const IIDNameLink& link) { return *link.record->iid == iid; });
}

lyr::ChainSlot<IIDNameLink> FindName(IIDNameLink*& head, const char* name) {
    return lyr::FindSlot(head, [=](const IIDNameLink& link) {
        return lyr::SameText(link.record->interfaceName, name);
    });
}

}  // namespace

int LYRSysTSDicoIIDName::AddDicoIIDName(const GUID& iid, const char* name) {
    if (name == nullptr) return 0;
    if (!_DictionaryCleared) _ClearDictionary();

    const auto byName = FindName(_IIDNameByName[lyr::SignedKey(name)], name);
    if (byName.link != nullptr) return *byName.link->record->iid == iid ? 1 : 0;
    const auto byIID = FindIID(_IIDNameByIID[lyr::SignedKey(iid)], iid);
    if (byIID.link != nullptr) return 0;

    return lyr::RefuseOnShortage(0, [&] {
        const char* const internedName = lyr::InternText(name);
        if (internedName == nullptr) return 0;
        auto record =
            std::make_unique<IIDNameRecord>(IIDNameRecord{lyr::InternGUID(&iid), internedName});
        auto iidLink = std::make_unique<IIDNameLink>(IIDNameLink{record.get(), nullptr});
        auto nameLink = std::make_unique<IIDNameLink>(IIDNameLink{record.get(), nullptr});
        static_cast<void>(record.release());
        lyr::StoreShared(*byIID.place, iidLink.release());
        lyr::StoreShared(*byName.place, nameLink.release());
        return 1;
    });
}

const char* LYRSysTSDicoIIDName::QueryDicoIIDNameByIID(const GUID& iid) {
    const IIDNameLink* const link = FindIID(_IIDNameByIID[lyr::SignedKey(iid)], iid).link;
    return link != nullptr ? link->record->interfaceName : nullptr;
}

const GUID* LYRSysTSDicoIIDName::QueryDicoIIDNameByName(const char* name) {
    if (name == nullptr) return nullptr;
    const IIDNameLink* const link = FindName(_IIDNameByName[lyr::SignedKey(name)], name).link;
    return link != nullptr ? link->record->iid : nullptr;
}

int LYRSysTSDicoIIDName::_ComputeKeyForIID(const GUID& iid) {
    return static_cast<int>(lyr::SignedKey(iid));
}

int LYRSysTSDicoIIDName::_ComputeKeyForName(const char* name) {
    return name != nullptr ? static_cast<int>(lyr::SignedKey(name)) : 0;
}

void LYRSysTSDicoIIDName::_ClearDictionary() {
    const lyr::MutexGuard guard(*GetGlobalIIDDicoMutex());
    if (_DictionaryCleared) return;
    lyr::ClearHeads(_IIDNameByIID);
    lyr::ClearHeads(_IIDNameByName);
    _DictionaryCleared = true;
}

void LYRSysTSDicoIIDName::_FreeDictionary() {
    lyr::FreeChains(std::span(_IIDNameByName), [](IIDNameLink* link) {
        delete link->record;
        delete link;
    });
    lyr::FreeChains(std::span(_IIDNameByIID), [](IIDNameLink* link) { delete link; });
}
