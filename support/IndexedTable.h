#pragma once

#include "Chain.h"
#include "HashIndex.h"
#include "NodePool.h"

#include <cstddef>
#include <span>

namespace lyr::internal {

/// What stands beside a table of chains, whose links are `{record, next}`: the ends of the chains,
/// the memory of the links, and an index that finds a record at once, however long the chains are.
/// Its user gives it the heads of the chains, always the same.
///
/// It is changed by one thread at a time. It is meant for static memory: constant-initialised,
/// never destroyed.
template <typename Record, typename Link, std::size_t buckets, Readers readers>
struct IndexedTable {
    ChainTails<Link, buckets> tails = {};
    NodePool<Link> links = {};
    HashIndex<Record, readers> index = {};

    /// Makes sure that one more Append has room; false when memory is out.
    bool Reserve() { return links.Reserve() && index.Reserve(); }

    /// Sends for what Append writes to, which arrives while its caller makes the record.
    void Prefetch(std::size_t bucket, std::size_t hash) const {
        tails.Prefetch(bucket);
        index.Prefetch(hash);
    }

    /// Hangs a new record, after Reserve.
    void Append(Link** heads, std::size_t bucket, std::size_t hash, Record* record) {
        tails.Append(heads[bucket], bucket, links.Make(record, nullptr));
        index.Add(hash, record);
    }

    /// Empties the table, handing each link to `dispose`, with no other thread looking into it.
    template <typename Dispose>
    void Clear(Link** heads, Dispose dispose) {
        index.Clear();
        tails.Clear();
        FreeChains(std::span<Link*, buckets>(heads, buckets), dispose);
        links.Clear();
    }
};

}  // namespace lyr::internal
