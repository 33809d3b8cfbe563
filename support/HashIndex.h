#pragma once

#include <atomic>
#include <cstddef>
#include <cstdlib>
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
        for (std::size_t i = hash & slots->mask;; i = (i + 1) & slots->mask) {
            const Slot& slot = slots->Begin()[i];
            Node* const node = slot.node.load(std::memory_order_acquire);
            if (node == nullptr) return nullptr;
            if (slot.hash.load(std::memory_order_relaxed) == hash && matches(*node)) return node;
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
        Put(*_slots.load(std::memory_order_relaxed), hash, node);
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

    struct Slot {
        std::atomic<std::size_t> hash;
        std::atomic<Node*> node;
    };

    /// The slots follow the header. What has been outgrown is kept for readers without the lock,
    /// which may be looking into it still; all of it together is smaller than the newest.
    struct alignas(Slot) Slots {
        std::size_t mask;
        Slots* smaller;

        Slot* Begin() { return reinterpret_cast<Slot*>(this + 1); }
        const Slot* Begin() const { return reinterpret_cast<const Slot*>(this + 1); }
    };

    static void Put(Slots& slots, std::size_t hash, Node* node) {
        std::size_t i = hash & slots.mask;
        while (slots.Begin()[i].node.load(std::memory_order_relaxed) != nullptr) {
            i = (i + 1) & slots.mask;
        }
        slots.Begin()[i].hash.store(hash, std::memory_order_relaxed);
        slots.Begin()[i].node.store(node, std::memory_order_release);
    }

    bool Grow(Slots* old, std::size_t size) {
        void* const memory = std::malloc(sizeof(Slots) + size * sizeof(Slot));
        if (memory == nullptr) return false;
        constexpr bool keepsOld = readers == Readers::kAny;
        auto* const grown = new (memory) Slots{size - 1, keepsOld ? old : nullptr};
        for (std::size_t i = 0; i < size; ++i) new (grown->Begin() + i) Slot{0, nullptr};
        if (old != nullptr) {
            for (std::size_t i = 0; i <= old->mask; ++i) {
                const Slot& slot = old->Begin()[i];
                Node* const node = slot.node.load(std::memory_order_relaxed);
                if (node != nullptr) Put(*grown, slot.hash.load(std::memory_order_relaxed), node);
            }
        }
        _slots.store(grown, std::memory_order_release);
        if (!keepsOld) std::free(old);
        return true;
    }

    std::atomic<Slots*> _slots = nullptr;
    std::size_t _count = 0;
};

}  // namespace lyr
