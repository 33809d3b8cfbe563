#pragma once

#include <cstdint>

namespace lyr::internal {

/// The sum of the bytes, each read as `Byte` (signed or unsigned) and multiplied with its weight,
/// in 32 bits that wrap. The weights count up from `firstWeight`. The keys of all tables are made
/// of it; they differ in the signedness, the first weight and the width that they cut it to.
template <typename Byte, typename Bytes>
std::uint32_t WeightedByteSum(const Bytes& bytes, std::uint32_t firstWeight) {
    std::uint32_t sum = 0;
    std::uint32_t weight = firstWeight;
    for (const auto byte : bytes) {
        const auto value = static_cast<std::int32_t>(static_cast<Byte>(byte));
        sum += weight * static_cast<std::uint32_t>(value);
        ++weight;
    }
    return sum;
}

}  // namespace lyr::internal
