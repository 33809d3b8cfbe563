#pragma once

#include "GUID.h"

#include <array>
#include <bit>
#include <cstdint>

namespace lyr {

static_assert(std::endian::native == std::endian::little,
              "keys and orders are defined on the little-endian bytes of a GUID");

/// The 16 bytes of a GUID in memory order.
inline std::array<unsigned char, 16> GuidBytes(const GUID& guid) noexcept {
    return std::bit_cast<std::array<unsigned char, 16>>(guid);
}

/// The same bytes as four 32-bit words.
inline std::array<std::uint32_t, 4> GuidWords(const GUID& guid) noexcept {
    return std::bit_cast<std::array<std::uint32_t, 4>>(guid);
}

}  // namespace lyr
