#include "LYRSysTSDictionary.h"

#include "DictionaryTables.h"
#include "support/GuidBytes.h"
#include "support/MutexGuard.h"
#include "support/StartUpOrder.h"
#include "support/Text.h"

constinit DicEntryLink* LYRSysTSDictionary::_dicByName[4096] = {};
constinit DicEntryLink* LYRSysTSDictionary::_dicByGUID[4096] = {};
constinit std::atomic<bool> LYRSysTSDictionary::_DictionaryCleared = false;
constinit std::atomic<bool> LYRSysTSDictionary::_DictionaryDeleted = false;
constinit ReadFileLink** LYRSysTSDictionary::_readDicFiles = nullptr;

constinit LYRSmartMutex* StaticDicoMutextToForceInitDuringDllLoading = nullptr;

LYRSmartMutex* GetGlobalDicoMutex() {
    static LYRSmartMutex mutexGlobal(0);
    return &mutexGlobal;
}

namespace {

[[gnu::constructor(lyr::kStartDicoMutex)]] void MakeDicoMutex() {
    StaticDicoMutextToForceInitDuringDllLoading = GetGlobalDicoMutex();
}

}  // namespace

void LYRSysTSDictionary::_ClearDictionary() {
    const lyr::MutexGuard guard(*GetGlobalDicoMutex());
    if (_DictionaryCleared) return;
    lyr::ClearHeads(_dicByName);
    lyr::ClearHeads(_dicByGUID);
    _DictionaryCleared = true;
}

void LYRSysTSDictionary::_DeleteDictionary() {
    if (!_DictionaryCleared || _DictionaryDeleted.exchange(true)) return;
    {
        // A record with a class name is in the table by name, which frees it.
        const lyr::MutexGuard guard(*GetGlobalDicoMutex());
        lyr::FreeChains(std::span(_dicByGUID), [](DicEntryLink* link) {
            if (link->info != nullptr && link->info->className == nullptr) delete link->info;
            delete link;
        });
    }
    const lyr::MutexGuard guard(*GetGlobalDicoMutex());
    lyr::FreeChains(std::span(_dicByName), [](DicEntryLink* link) {
        delete link->info;
        delete link;
    });
}

lyr::ChainSlot<DicEntryLink> lyr::DictionaryTables::Find(int bucket, const char* className,
                                                         const char* interfaceName) {
    return FindSlot(LYRSysTSDictionary::_dicByName[bucket], [=](const DicEntryLink& link) {
        return link.info != nullptr && SameText(link.info->className, className) &&
               SameText(link.info->interfaceName, interfaceName);
    });
}

lyr::ChainSlot<DicEntryLink> lyr::DictionaryTables::Find(int bucket, const GUID& clsid,
                                                         const GUID& iid) {
    return FindSlot(LYRSysTSDictionary::_dicByGUID[bucket], [&](const DicEntryLink& link) {
        return link.info != nullptr && *link.info->clsid == clsid && *link.info->iid == iid;
    });
}
