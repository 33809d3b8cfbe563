#pragma once

#include <cstddef>
#include <cstdlib>
#include <new>
#include <type_traits>

namespace lyr::internal {

/// The memory of a table's nodes, which are made one by one and given back all together: a table
/// has so many of them that a block of the allocator for each would cost time and room.
///
/// It is changed by one thread at a time, under the table's lock. It is meant for static memory:
/// constant-initialised, never destroyed.
template <typename Node>
class NodePool {
    static_assert(std::is_trivially_destructible_v<Node>);
    static_assert(alignof(Node) <= alignof(std::max_align_t), "malloc gives no more");

public:
    constexpr NodePool() = default;
    NodePool(const NodePool&) = delete;
    NodePool& operator=(const NodePool&) = delete;

    /// Makes sure that one more Make has room; false when memory is out.
    bool Reserve() {
        if (_newest != nullptr && _newest->used < kNodes) return true;
        void* const memory = std::malloc(sizeof(Block));
        if (memory == nullptr) return false;
        auto* const block = new (memory) Block;
        block->before = _newest;
        block->used = 0;
        _newest = block;
        return true;
    }

    /// Makes a node, after Reserve.
    Node* Make(const Node& node) {
        return new (_newest->room + sizeof(Node) * _newest->used++) Node(node);
    }

    /// Gives all nodes back.
    void Clear() {
        while (_newest != nullptr) {
            Block* const before = _newest->before;
            std::free(_newest);
            _newest = before;
        }
    }

private:
    static constexpr std::size_t kNodes = 4000 / sizeof(Node);  // a page, with what else is in it

    struct Block {
        Block* before;
        std::size_t used;
        alignas(Node) std::byte room[kNodes * sizeof(Node)];
    };

    Block* _newest = nullptr;
};

}  // namespace lyr::internal
