#pragma once

#include <cstddef>
#include <span>
#include <utility>

namespace lyr::internal {

/// Where a walk along a bucket's chain ended: the link found there, or null at the chain's end,
/// and the pointer that leads to it, where a new link is hung.
template <typename Link>
struct ChainSlot {
    Link** place;
    Link* link;
};

/// Walks the chain from `head` to the first link for which `stop` holds, or to its end.
template <typename Link, typename Stop>
ChainSlot<Link> FindSlot(Link*& head, Stop stop) {
    Link** place = &head;
    Link* link = *place;
    while (link != nullptr && !stop(*link)) {
        place = &link->next;
        link = *place;
    }
    return {place, link};
}

/// The last link of each chain of a table, so that hanging one more does not walk the chain.
template <typename Link, std::size_t buckets>
class ChainTails {
public:
    /// Hangs the link at the end of the bucket's chain, which begins at `head`.
    void Append(Link*& head, std::size_t bucket, Link* link) {
        Link*& last = _last[bucket];
        (last != nullptr ? last->next : head) = link;
        last = link;
    }

    /// Sends for what Append writes to.
    void Prefetch(std::size_t bucket) const { __builtin_prefetch(_last[bucket], 1); }

    /// Forgets all, when the chains are empty.
    void Clear() {
        for (Link*& last : _last) last = nullptr;
    }

private:
    Link* _last[buckets] = {};
};

/// Empties every chain of a table, handing each link to `dispose`, after which it may be gone.
template <typename Link, std::size_t buckets, typename Dispose>
void FreeChains(std::span<Link*, buckets> heads, Dispose dispose) {
    for (Link*& head : heads) {
        Link* link = std::exchange(head, nullptr);
        while (link != nullptr) {
            Link* const next = link->next;
            dispose(link);
            link = next;
        }
    }
}

/// Makes every chain of a table empty without freeing anything.
template <typename Link, std::size_t buckets>
void ClearHeads(Link* (&heads)[buckets]) {
    for (Link*& head : heads) head = nullptr;
}

}  // namespace lyr::internal
