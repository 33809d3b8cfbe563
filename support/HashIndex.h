#pragma once

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <new>

namespace lyr {

/// Who looks into an index: threads that hold the table's lock, or any at any time.
enum class Readers { kUnderLock, kAny };

/// An index that stands beside a table of chains: it finds the node of a key at once, however long
/// the chains are, and they keep the order. It holds each of the table's nodes once.
///
/// It is changed by one thread at a time, under the table's lock. It is meant for static memory:
/// constant-initialised, never destroyed.
template <typename Node, Readers readers>
class HashIndex {
public:
    constexpr HashIndex() = default;
    HashIndex(const HashIndex&) = delete;
    HashIndex& operator=(const HashIndex&) = delete;

    /// The node with this hash for which `matches` holds, or null.
    template <typename Matches>
    Node* Find(std::size_t hash, Matches matches) const {
        const Slots* const slots = _slots.load(std::memory_order_acquire);
        if (slots == nullptr) return nullptr;
        const Tag wanted = TagOf(hash);
        for (std::size_t i = static_cast<Place>(hash) & slots->mask;; i = (i + 1) & slots->mask) {
            const Tag tag = slots->tags[i].load(std::memory_order_acquire);
            if (tag == kFree) return nullptr;
            if (tag == wanted && matches(*slots->nodes[i])) return slots->nodes[i];
        }
    }

    /// Makes sure that one more Add has room; false when memory is out.
    bool Reserve() {
        Slots* const slots = _slots.load(std::memory_order_relaxed);
        if (slots == nullptr) return Grow(nullptr, kFirstSize);
        const std::size_t size = slots->mask + 1;
        return (_count + 1) * 3 <= size * 2 || Grow(slots, size * 2);
    }

    /// Adds a node, after Reserve.
    void Add(std::size_t hash, Node* node) {
        Put(*_slots.load(std::memory_order_relaxed), TagOf(hash), static_cast<Place>(hash), node);
        ++_count;
    }

    /// Empties the index, with no other thread looking into it.
    void Clear() {
        for (Slots* slots = _slots.exchange(nullptr); slots != nullptr;) {
            Slots* const smaller = slots->smaller;
            std::free(slots);
            slots = smaller;
        }
        _count = 0;
    }

private:
    static constexpr std::size_t kFirstSize = 64;

    /// One end of the hash says where the search for its node begins. The other one keeps the
    /// search from looking at other nodes on its way, so that an unknown key costs a few bytes.
    using Place = std::uint32_t;
    using Tag = std::uint8_t;
    static constexpr Tag kFree = 0;

    static Tag TagOf(std::size_t hash) {
        return static_cast<Tag>(std::max<std::size_t>(hash >> 56, kFree + 1));
    }

    /// One block of memory. The places are for the next growth alone. A slot's tag is set after its
    /// node. What has been outgrown is kept for readers without the lock, which may be looking into
    /// it still; all of it together is smaller than the newest.
    struct Slots {
        std::size_t mask;
        Slots* smaller;
        Node** nodes;
        Place* places;
        std::atomic<Tag>* tags;
    };

    static Slots* MakeSlots(std::size_t size, Slots* smaller) {
        constexpr std::size_t slotSize = sizeof(Node*) + sizeof(Place) + sizeof(Tag);
        void* const memory = std::malloc(sizeof(Slots) + size * slotSize);
        if (memory == nullptr) return nullptr;
        auto* const nodes = reinterpret_cast<Node**>(static_cast<Slots*>(memory) + 1);
        auto* const places = reinterpret_cast<Place*>(nodes + size);
        auto* const tags = reinterpret_cast<std::atomic<Tag>*>(places + size);
        std::uninitialized_value_construct_n(tags, size);
        return new (memory) Slots{size - 1, smaller, nodes, places, tags};
    }

    static void Put(Slots& slots, Tag tag, Place place, Node* node) {
        std::size_t i = place & slots.mask;
        while (slots.tags[i].load(std::memory_order_relaxed) != kFree) i = (i + 1) & slots.mask;
        slots.nodes[i] = node;
        slots.places[i] = place;
        slots.tags[i].store(tag, std::memory_order_release);
    }

    bool Grow(Slots* old, std::size_t size) {
        constexpr bool keepsOld = readers == Readers::kAny;
        Slots* const grown = MakeSlots(size, keepsOld ? old : nullptr);
        if (grown == nullptr) return false;
        for (std::size_t i = 0; old != nullptr && i <= old->mask; ++i) {
            const Tag tag = old->tags[i].load(std::memory_order_relaxed);
            if (tag != kFree) Put(*grown, tag, old->places[i], old->nodes[i]);
        }
        _slots.store(grown, std::memory_order_release);
        if (!keepsOld) std::free(old);
        return true;
    }

    std::atomic<Slots*> _slots = nullptr;
    std::size_t _count = 0;
};

}  // namespace lyr
