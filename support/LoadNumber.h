#pragma once

#include <bit>
#include <cstring>

namespace lyr::internal {

static_assert(std::endian::native == std::endian::little,
              "the first byte of a number is its lowest");

/// The number that begins at any byte, aligned or not.
template <typename Number>
Number LoadNumber(const char* bytes) noexcept {
    Number number;
    std::memcpy(&number, bytes, sizeof number);
    return number;
}

}  // namespace lyr::internal
