#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <functional>
#include <new>
#include <utility>

namespace lyr::internal {

/// The memory of a table's nodes, which are made one by one and given back all together: a table
/// has so many of them that a block of the allocator for each would cost time and room.
///
/// It is changed by one thread at a time, under the table's lock. It is meant for static memory:
/// constant-initialised, never destroyed.
template <typename Node>
class NodePool {
    static_assert(alignof(Node) <= alignof(std::max_align_t), "malloc gives no more");

public:
    constexpr NodePool() = default;
    NodePool(const NodePool&) = delete;
    NodePool& operator=(const NodePool&) = delete;

    /// Makes sure that one more Make has room; false when memory is out.
    bool Reserve() {
        if (_newest != nullptr && _newest->used < _newest->size) return true;
        // Few blocks, and little room that is not needed yet.
        const std::size_t size = std::max(kFirst, _size / 8);
        void* const memory = std::malloc(sizeof(Block) + size * sizeof(Node));
        if (memory == nullptr) return false;
        _newest = new (memory) Block{_newest, size, 0};
        _size += size;
        return true;
    }

    /// Makes a node, after Reserve.
    template <typename... Fields>
    Node* Make(Fields&&... fields) {
        return new (_newest->Place(_newest->used++)) Node{std::forward<Fields>(fields)...};
    }

    /// Whether the pool has made the node.
    bool Holds(const Node* node) const {
        const std::less<> isBefore;  // of any two addresses
        const auto* const place = reinterpret_cast<const std::byte*>(node);
        for (const Block* block = _newest; block != nullptr; block = block->before) {
            if (!isBefore(place, block->Place(0)) && isBefore(place, block->Place(block->used))) {
                return true;
            }
        }
        return false;
    }

    /// Gives the memory of all nodes back, without destroying them.
    void Clear() {
        while (_newest != nullptr) {
            Block* const before = _newest->before;
            std::free(_newest);
            _newest = before;
        }
        _size = 0;
    }

private:
    static constexpr std::size_t kFirst = 4000 / sizeof(Node);  // a page, with what else is in it

    struct alignas(std::max_align_t) Block {
        Block* before;
        std::size_t size;
        std::size_t used;

        /// The room behind it, up to its end.
        std::byte* Place(std::size_t node) {
            return reinterpret_cast<std::byte*>(this + 1) + node * sizeof(Node);
        }
        const std::byte* Place(std::size_t node) const {
            return const_cast<Block*>(this)->Place(node);
        }
    };

    Block* _newest = nullptr;
    std::size_t _size = 0;  // of all blocks together, in nodes
};

}  // namespace lyr::internal
