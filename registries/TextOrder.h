#pragma once

#include "LYRSysTSDicoString.h"
#include "support/TextHash.h"

#include <cstddef>
#include <cstdint>

namespace lyr::internal {

/// One chain of the string store once more, as an array: where the chain is long, the place of a
/// new text is found by halving instead of by walking. It is left out where the chain is short or
/// memory is, and then the chain is walked.
///
/// It is used under the store's lock. It is meant for static memory: constant-initialised, never
/// destroyed.
class TextOrder {
public:
    /// A place in the chain: the pointer that leads there and, where the array is, how many nodes
    /// stand before it.
    struct Place {
        DicoStringNode** link;
        std::size_t index;
    };

    constexpr TextOrder() = default;
    TextOrder(const TextOrder&) = delete;
    TextOrder& operator=(const TextOrder&) = delete;

    /// Where a text that the chain does not have belongs; `head` is the chain's.
    Place PlaceOf(const HashedText& text, DicoStringNode*& head) const;

    /// Takes note of the node that has been hung there.
    void Add(Place place, DicoStringNode* node, DicoStringNode* head);

    /// Forgets all, when the chain is empty.
    void Clear();

private:
    /// A node, with what mostly tells it from others without a look at it.
    struct Entry {
        std::uint64_t rank;
        DicoStringNode* node;

        explicit Entry(DicoStringNode* ofNode);
    };

    static std::uint64_t Rank(const char* text, std::size_t length);
    std::size_t CountBefore(const HashedText& text) const;
    bool Grow();
    void TakeFrom(DicoStringNode* head);
    void Drop();

    Entry* _entries = nullptr;  // of all nodes of the chain, or null
    std::uint32_t _capacity = 0;
    std::uint32_t _count = 0;  // of the chain's nodes
};

}  // namespace lyr::internal
