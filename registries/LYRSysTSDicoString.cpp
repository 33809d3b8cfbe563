#include "LYRSysTSDicoString.h"

#include "registries/Intern.h"
#include "registries/TextOrder.h"
#include "support/ByteSum.h"
#include "support/Chain.h"
#include "support/HashIndex.h"
#include "support/MutexGuard.h"
#include "support/NodePool.h"
#include "support/StartUpOrder.h"
#include "support/TextHash.h"

#include <cstdlib>
#include <cstring>
#include <string_view>

constinit DicoStringNode* LYRSysTSDicoString::_DicoString[4096] = {};
constinit std::atomic<bool> LYRSysTSDicoString::_DictionaryCleared = false;
constinit DicoStringBlock* LYRSysTSDicoString::_HeadBlocStringForDico = nullptr;
constinit DicoStringBlock* LYRSysTSDicoString::_LastBlocStringForDico = nullptr;
constinit char* LYRSysTSDicoString::_StringForDicoAvailable = nullptr;
constinit std::int32_t LYRSysTSDicoString::_SizeStringForDicoAvailable = 0;

constinit LYRSmartMutex* StaticStringMutextToForceInitDuringDllLoading = nullptr;

LYRSmartMutex* GetGlobalStringDicoMutex() {
    static LYRSmartMutex mutexDicoString(0);
    return &mutexDicoString;
}

namespace {

constexpr std::size_t kBlockSize = sizeof(DicoStringBlock::chars);

[[gnu::constructor(lyr::internal::kStartStringMutex)]] void MakeStringMutex() {
    StaticStringMutextToForceInitDuringDllLoading = GetGlobalStringDicoMutex();
}

// The texts alone: a look-up need not pass through their nodes. Looked into without the lock: what
// it finds never changes.
constinit lyr::internal::HashIndex<const char, lyr::internal::Readers::kAny> stringIndex;
constinit lyr::internal::NodePool<DicoStringNode> nodes;
constinit lyr::internal::TextOrder orders[4096];  // of the chains

const char* Find(const lyr::internal::HashedText& text) {
    return stringIndex.Find(text.hash,
                            [&](const char& known) { return std::strcmp(&known, text.text) == 0; });
}

unsigned KeyOf(std::string_view text) {
    return lyr::internal::WeightedByteSum<unsigned char>(text, 0) & 0xfff;
}

}  // namespace

const char* LYRSysTSDicoString::AddStringInDico(const char* s) {
    return s != nullptr ? Intern(lyr::internal::HashedText(s)) : nullptr;
}

const char* LYRSysTSDicoString::Intern(const lyr::internal::HashedText& text) {
    if (!_DictionaryCleared) _ClearDictionary();
    if (text.length >= kBlockSize) return nullptr;
    if (const char* const known = Find(text)) return known;

    const unsigned key = KeyOf({text.text, text.length});
    stringIndex.Prefetch(text.hash);
    const lyr::internal::MutexGuard guard(*GetGlobalStringDicoMutex());
    if (const char* const known = Find(text)) return known;
    const auto length = static_cast<std::int32_t>(text.length);
    if (!nodes.Reserve() || !stringIndex.Reserve()) return nullptr;
    char* const copy = TakeRoom(length + 1);
    if (copy == nullptr) return nullptr;
    std::memcpy(copy, text.text, text.length + 1);
    DicoStringNode*& head = _DicoString[key];
    const auto place = orders[key].PlaceOf(text, head);
    DicoStringNode* const node = nodes.Make(*place.link, copy, length);
    *place.link = node;
    orders[key].Add(place, node, head);
    stringIndex.Add(text.hash, copy);
    return copy;
}

char* LYRSysTSDicoString::TakeRoom(std::int32_t size) {
    if (_SizeStringForDicoAvailable < size) {
        auto* const block = static_cast<DicoStringBlock*>(std::malloc(sizeof(DicoStringBlock)));
        if (block == nullptr) return nullptr;
        block->next = nullptr;
        _StringForDicoAvailable = block->chars;
        _SizeStringForDicoAvailable = static_cast<std::int32_t>(kBlockSize);
        (_LastBlocStringForDico != nullptr ? _LastBlocStringForDico->next
                                           : _HeadBlocStringForDico) = block;
        _LastBlocStringForDico = block;
    }
    char* const room = _StringForDicoAvailable;
    _StringForDicoAvailable += size;
    _SizeStringForDicoAvailable -= size;
    return room;
}

int LYRSysTSDicoString::_ComputeStringKey(const char* s, int& length) {
    const std::string_view text(s);
    length = static_cast<int>(text.size());
    return static_cast<int>(KeyOf(text));
}

void LYRSysTSDicoString::_ClearDictionary() {
    const lyr::internal::MutexGuard guard(*GetGlobalStringDicoMutex());
    if (_DictionaryCleared) return;
    lyr::internal::ClearHeads(_DicoString);
    _DictionaryCleared = true;
}

void LYRSysTSDicoString::_FreeDictionary() {
    const lyr::internal::MutexGuard guard(*GetGlobalStringDicoMutex());
    stringIndex.Clear();  // first, since what it finds lies in the blocks
    for (DicoStringBlock* block = _HeadBlocStringForDico; block != nullptr;) {
        DicoStringBlock* const next = block->next;
        std::free(block);
        block = next;
    }
    _HeadBlocStringForDico = nullptr;
    _LastBlocStringForDico = nullptr;
    _StringForDicoAvailable = nullptr;
    _SizeStringForDicoAvailable = 0;
    lyr::internal::ClearHeads(_DicoString);
    for (lyr::internal::TextOrder& order : orders) order.Clear();
    nodes.Clear();
}

namespace lyr::internal {

void PrefetchText(const HashedText& text) {
    stringIndex.Prefetch(text.hash);
}

}  // namespace lyr::internal
