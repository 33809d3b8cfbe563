#pragma once

#include "GUID.h"

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace lyr::internal {

static_assert(std::endian::native == std::endian::little,
              "keys and orders are defined on the little-endian bytes of a GUID");

/// The 16 bytes of a GUID in memory order, where they are.
inline std::string_view GuidBytes(const GUID& guid) noexcept {
    return {reinterpret_cast<const char*>(&guid), sizeof guid};
}

/// The same bytes as four 32-bit words.
inline std::array<std::uint32_t, 4> GuidWords(const GUID& guid) noexcept {
    return std::bit_cast<std::array<std::uint32_t, 4>>(guid);
}

/// A hash of all 16 bytes, for indexes; the tables have keys of their own.
inline std::size_t GuidHash(const GUID& guid) noexcept {
    const auto halves = std::bit_cast<std::array<std::uint64_t, 2>>(guid);
    std::uint64_t hash = (halves[0] ^ std::rotr(halves[1], 29)) * 0x9E3779B97F4A7C15;
    hash ^= hash >> 32;
    hash *= 0xD6E8FEB86659FD93;
    return hash ^ hash >> 32;
}

}  // namespace lyr::internal
