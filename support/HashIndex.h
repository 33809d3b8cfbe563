#pragma once

#include <algorithm>
#include <atomic>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <new>

namespace lyr::internal {

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
        const Tags wanted = TagOf(hash) * kEachByte;
        for (std::size_t g = static_cast<Place>(hash) & slots->mask;; g = (g + 1) & slots->mask) {
            __builtin_prefetch(slots->nodes + g * kGroup);  // arrives while the tags do
            const Tags tags = slots->tags[g].load(std::memory_order_acquire);
            for (Tags same = ZeroBytes(tags ^ wanted); same != 0; same &= same - 1) {
                Node* const node = slots->nodes[g * kGroup + FirstByte(same)];
                if (matches(*node)) return node;
            }
            if (ZeroBytes(tags) != 0) return nullptr;
        }
    }

    /// Makes sure that one more Add has room; false when memory is out.
    bool Reserve() {
        Slots* const slots = _slots.load(std::memory_order_relaxed);
        if (slots == nullptr) return Grow(nullptr, kFirstGroups);
        const std::size_t groups = slots->mask + 1;
        if ((_count + 1) * 3 <= groups * kGroup * 2 || Grow(slots, groups * 2)) return true;
        return _count + 1 < groups * kGroup;  // a search ends at a free slot, so one stays free
    }

    /// Sends for what Add writes to, most likely.
    void Prefetch(std::size_t hash) const {
        const Slots* const slots = _slots.load(std::memory_order_acquire);
        if (slots == nullptr) return;
        const std::size_t group = static_cast<Place>(hash) & slots->mask;
        __builtin_prefetch(slots->tags + group, 1);
        __builtin_prefetch(slots->nodes + group * kGroup, 1);
        __builtin_prefetch(slots->places + group * kGroup, 1);
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
    /// One end of the hash says in which group of slots the search for its node begins; it ends at
    /// the first group with a free slot. The other end, the tag, keeps the search from looking at
    /// other nodes. The tags of a group are the bytes of one word, 0 for a free slot, so that an
    /// unknown key mostly costs the reading of that word.
    using Place = std::uint32_t;
    using Tags = std::uint64_t;
    static constexpr std::size_t kGroup = sizeof(Tags);
    static constexpr std::size_t kFirstGroups = 8;
    static constexpr Tags kEachByte = 0x0101'0101'0101'0101;

    static Tags TagOf(std::size_t hash) { return std::max<Tags>(hash >> 56, 1); }

    /// The highest bit of each byte that is zero.
    static Tags ZeroBytes(Tags tags) {
        constexpr Tags kLowBits = 0x7F * kEachByte;
        return ~(((tags & kLowBits) + kLowBits) | tags | kLowBits);
    }

    /// The number of the first byte that has a bit.
    static std::size_t FirstByte(Tags bits) {
        return static_cast<std::size_t>(std::countr_zero(bits)) / 8;
    }

    /// One block of memory. The places are for the next growth alone. A slot's tag is set after its
    /// node. What has been outgrown is kept for readers without the lock, which may be looking into
    /// it still; all of it together is smaller than the newest.
    struct Slots {
        std::size_t mask;
        Slots* smaller;
        std::atomic<Tags>* tags;
        Node** nodes;
        Place* places;
    };

    static Slots* MakeSlots(std::size_t groups, Slots* smaller) {
        constexpr std::size_t slotSize = 1 + sizeof(Node*) + sizeof(Place);
        void* const memory = std::malloc(sizeof(Slots) + groups * kGroup * slotSize);
        if (memory == nullptr) return nullptr;
        auto* const tags = reinterpret_cast<std::atomic<Tags>*>(static_cast<Slots*>(memory) + 1);
        auto* const nodes = reinterpret_cast<Node**>(tags + groups);
        auto* const places = reinterpret_cast<Place*>(nodes + groups * kGroup);
        std::uninitialized_value_construct_n(tags, groups);
        return new (memory) Slots{groups - 1, smaller, tags, nodes, places};
    }

    static void Put(Slots& slots, Tags tag, Place place, Node* node) {
        std::size_t g = place & slots.mask;
        Tags tags = slots.tags[g].load(std::memory_order_relaxed);
        Tags freeOnes = ZeroBytes(tags);
        while (freeOnes == 0) {
            g = (g + 1) & slots.mask;
            tags = slots.tags[g].load(std::memory_order_relaxed);
            freeOnes = ZeroBytes(tags);
        }
        const std::size_t free = FirstByte(freeOnes);
        slots.nodes[g * kGroup + free] = node;
        slots.places[g * kGroup + free] = place;
        slots.tags[g].store(tags | tag << 8 * free, std::memory_order_release);
    }

    bool Grow(Slots* old, std::size_t groups) {
        constexpr bool keepsOld = readers == Readers::kAny;
        Slots* const grown = MakeSlots(groups, keepsOld ? old : nullptr);
        if (grown == nullptr) return false;
        for (std::size_t g = 0; old != nullptr && g <= old->mask; ++g) {
            // The used slots of a group are its first ones.
            std::size_t i = g * kGroup;
            for (Tags tags = old->tags[g].load(std::memory_order_relaxed); tags != 0; tags >>= 8) {
                Put(*grown, tags & 0xFF, old->places[i], old->nodes[i]);
                ++i;
            }
        }
        _slots.store(grown, std::memory_order_release);
        if (!keepsOld) std::free(old);
        return true;
    }

    std::atomic<Slots*> _slots = nullptr;
    std::size_t _count = 0;
};

}  // namespace lyr::internal
