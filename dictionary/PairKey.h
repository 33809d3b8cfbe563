#pragma once

#include <cstdint>
#include <cstdlib>

namespace lyr::internal {

/// How many buckets each table of the dictionary has.
inline constexpr int kPairBuckets = 4096;

/// The bucket of a pair from the weighted sums of its two halves. The remainder takes the sign of
/// the key, so a negative key falls elsewhere than its unsigned reading would.
inline int PairBucket(std::uint32_t first, std::uint32_t second) {
    return std::abs(static_cast<std::int32_t>(first ^ second) % kPairBuckets);
}

}  // namespace lyr::internal
