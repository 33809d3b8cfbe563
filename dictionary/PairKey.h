#pragma once

#include <cstdint>
#include <cstdlib>

namespace lyr {

/// The bucket of a pair from the weighted sums of its two halves. The remainder takes the sign of
/// the key, so a negative key falls elsewhere than its unsigned reading would.
inline int PairBucket(std::uint32_t first, std::uint32_t second) {
    return std::abs(static_cast<std::int32_t>(first ^ second) % 4096);
}

}  // namespace lyr
