#include "LYRSysTSDicoGUID.h"

#include "support/ByteSum.h"
#include "support/Chain.h"
#include "support/GuidBytes.h"
#include "support/MutexGuard.h"
#include "support/StartUpOrder.h"

#include <new>

constinit DicoGUIDNode* LYRSysTSDicoGUID::_DicoGUID[4096] = {};
constinit std::atomic<bool> LYRSysTSDicoGUID::_DictionaryCleared = false;

constinit LYRSmartMutex* GuidMutextToForceInitDuringDllLoading = nullptr;

LYRSmartMutex* GetGlobalGUIDDicoMutex() {
    static LYRSmartMutex mutexDicoGUID(0);
    return &mutexDicoGUID;
}

namespace {

[[gnu::constructor(lyr::kStartGUIDMutex)]] void MakeGUIDMutex() {
    GuidMutextToForceInitDuringDllLoading = GetGlobalGUIDDicoMutex();
}

unsigned KeyOf(const GUID& guid) {
    const auto sum = lyr::WeightedByteSum<unsigned char>(lyr::GuidBytes(guid), 0);
    return (guid.Data1 + sum) & 0xfff;
}

}  // namespace

const GUID* LYRSysTSDicoGUID::AddGUIDInDico(const GUID* g) {
    if (g == nullptr) return nullptr;
    if (!_DictionaryCleared) _ClearDictionary();

    const unsigned key = KeyOf(*g);
    const lyr::MutexGuard guard(*GetGlobalGUIDDicoMutex());
    const auto slot =
        lyr::FindSlot(_DicoGUID[key], [&](const DicoGUIDNode& node) { return node.guid == *g; });
    if (slot.link != nullptr) return &slot.link->guid;

    auto* const node = new (std::nothrow) DicoGUIDNode{nullptr, *g};
    if (node == nullptr) return nullptr;
    *slot.place = node;
    return &node->guid;
}

int LYRSysTSDicoGUID::_ComputeGUIDKey(const GUID* g) {
    return g != nullptr ? static_cast<int>(KeyOf(*g)) : 0;
}

void LYRSysTSDicoGUID::_ClearDictionary() {
    const lyr::MutexGuard guard(*GetGlobalGUIDDicoMutex());
    if (_DictionaryCleared) return;
    lyr::ClearHeads(_DicoGUID);
    _DictionaryCleared = true;
}

void LYRSysTSDicoGUID::_FreeDictionary() {
    const lyr::MutexGuard guard(*GetGlobalGUIDDicoMutex());
    lyr::FreeChains(std::span(_DicoGUID), [](DicoGUIDNode* node) { delete node; });
}
