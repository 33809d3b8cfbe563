#include "registries/TextOrder.h"

#include "support/Chain.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>

namespace lyr::internal {

namespace {

constexpr std::uint32_t kShort = 16;  // nodes: as quickly walked as searched

}  // namespace

TextOrder::Entry::Entry(DicoStringNode* ofNode)
    : rank(Rank(ofNode->text, static_cast<std::size_t>(ofNode->length))), node(ofNode) {}

/// The longest first, and among equal lengths the first characters as strcmp orders them.
std::uint64_t TextOrder::Rank(const char* text, std::size_t length) {
    constexpr std::size_t kCharacters = 6;
    static_assert(sizeof(DicoStringBlock::chars) <= 0xFFFF, "the length takes two bytes");
    std::uint64_t rank = 0xFFFF - length;
    for (std::size_t i = 0; i < kCharacters; ++i) {
        rank = rank << 8 | (i < length ? static_cast<unsigned char>(text[i]) : 0U);
    }
    return rank;
}

TextOrder::Place TextOrder::PlaceOf(const HashedText& text, DicoStringNode*& head) const {
    if (_entries != nullptr) {
        const std::size_t index = CountBefore(text);
        return {index != 0 ? &_entries[index - 1].node->next : &head, index};
    }
    const auto length = static_cast<std::int32_t>(text.length);
    const auto slot = FindSlot(head, [&](const DicoStringNode& node) {
        if (node.length != length) return node.length < length;
        return std::strcmp(node.text, text.text) > 0;
    });
    return {slot.place, 0};
}

std::size_t TextOrder::CountBefore(const HashedText& text) const {
    const std::uint64_t rank = Rank(text.text, text.length);
    const auto isBefore = [&](const Entry& entry) {
        if (entry.rank != rank) return entry.rank < rank;
        return std::strcmp(entry.node->text, text.text) < 0;
    };
    std::size_t before = 0;
    for (std::size_t unknown = _count; unknown > 0;) {
        const std::size_t half = unknown / 2;
        __builtin_prefetch(_entries + before + half / 2);  // the middles of both halves
        __builtin_prefetch(_entries + before + half + half / 2);
        const bool isMiddleBefore = isBefore(_entries[before + half]);
        before += isMiddleBefore ? half + 1 : 0;
        unknown = isMiddleBefore ? unknown - half - 1 : half;
    }
    return before;
}

void TextOrder::Add(Place place, DicoStringNode* node, DicoStringNode* head) {
    ++_count;
    if (_entries == nullptr) return TakeFrom(head);
    if (_count > _capacity && !Grow()) return Drop();
    Entry* const entry = _entries + place.index;
    std::copy_backward(entry, _entries + _count - 1, _entries + _count);
    *entry = Entry(node);
}

void TextOrder::Clear() {
    Drop();
    _count = 0;
}

bool TextOrder::Grow() {
    const std::uint32_t capacity = std::max(_capacity, _count) * 2;
    void* const grown = std::realloc(static_cast<void*>(_entries), capacity * sizeof(Entry));
    if (grown == nullptr) return false;
    _entries = static_cast<Entry*>(grown);
    _capacity = capacity;
    return true;
}

/// Begins to keep the array, once the chain is long.
void TextOrder::TakeFrom(DicoStringNode* head) {
    if (_count <= kShort || !Grow()) return;
    Entry* entry = _entries;
    for (DicoStringNode* node = head; node != nullptr; node = node->next) new (entry++) Entry(node);
}

void TextOrder::Drop() {
    std::free(static_cast<void*>(_entries));
    _entries = nullptr;
    _capacity = 0;
}

}  // namespace lyr::internal
