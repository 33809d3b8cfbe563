#include "LYRSysTSDicoGUID.h"

#include "registries/Intern.h"
#include "support/ByteSum.h"
#include "support/Chain.h"
#include "support/GuidBytes.h"
#include "support/HashIndex.h"
#include "support/MutexGuard.h"
#include "support/NodePool.h"
#include "support/StartUpOrder.h"

constinit DicoGUIDNode* LYRSysTSDicoGUID::_DicoGUID[4096] = {};
constinit std::atomic<bool> LYRSysTSDicoGUID::_DictionaryCleared = false;

constinit LYRSmartMutex* GuidMutextToForceInitDuringDllLoading = nullptr;

LYRSmartMutex* GetGlobalGUIDDicoMutex() {
    static LYRSmartMutex mutexDicoGUID(0);
    return &mutexDicoGUID;
}

namespace {

// Looked into without the lock: what it finds never changes.
constinit lyr::internal::HashIndex<DicoGUIDNode, lyr::internal::Readers::kAny> guidIndex;
constinit lyr::internal::ChainTails<DicoGUIDNode, 4096> tails;
constinit lyr::internal::NodePool<DicoGUIDNode> nodes;

const GUID* Find(const GUID& guid, std::size_t hash) {
    const DicoGUIDNode* const node =
        guidIndex.Find(hash, [&](const DicoGUIDNode& known) { return known.guid == guid; });
    return node != nullptr ? &node->guid : nullptr;
}

[[gnu::constructor(lyr::internal::kStartGUIDMutex)]] void MakeGUIDMutex() {
    GuidMutextToForceInitDuringDllLoading = GetGlobalGUIDDicoMutex();
}

unsigned KeyOf(const GUID& guid) {
    const auto sum =
        lyr::internal::WeightedByteSum<unsigned char>(lyr::internal::GuidBytes(guid), 0);
    return (guid.Data1 + sum) & 0xfff;
}

}  // namespace

const GUID* LYRSysTSDicoGUID::AddGUIDInDico(const GUID* g) {
    if (g == nullptr) return nullptr;
    if (!_DictionaryCleared) _ClearDictionary();

    const std::size_t hash = lyr::internal::GuidHash(*g);
    if (const GUID* const known = Find(*g, hash)) return known;

    const unsigned key = KeyOf(*g);
    guidIndex.Prefetch(hash);
    const lyr::internal::MutexGuard guard(*GetGlobalGUIDDicoMutex());
    if (const GUID* const known = Find(*g, hash)) return known;
    tails.Prefetch(key);
    if (!guidIndex.Reserve() || !nodes.Reserve()) return nullptr;
    DicoGUIDNode* const node = nodes.Make(nullptr, *g);
    tails.Append(_DicoGUID[key], key, node);
    guidIndex.Add(hash, node);
    return &node->guid;
}

int LYRSysTSDicoGUID::_ComputeGUIDKey(const GUID* g) {
    return g != nullptr ? static_cast<int>(KeyOf(*g)) : 0;
}

void LYRSysTSDicoGUID::_ClearDictionary() {
    const lyr::internal::MutexGuard guard(*GetGlobalGUIDDicoMutex());
    if (_DictionaryCleared) return;
    lyr::internal::ClearHeads(_DicoGUID);
    _DictionaryCleared = true;
}

void LYRSysTSDicoGUID::_FreeDictionary() {
    const lyr::internal::MutexGuard guard(*GetGlobalGUIDDicoMutex());
    guidIndex.Clear();
    tails.Clear();
    lyr::internal::ClearHeads(_DicoGUID);
    nodes.Clear();
}

namespace lyr::internal {

void PrefetchGUID(std::size_t hash) {
    guidIndex.Prefetch(hash);
}

}  // namespace lyr::internal
