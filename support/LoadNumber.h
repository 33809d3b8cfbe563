#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

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

/// The last `count` bytes of the text as a number, 8 at most; the text has as many.
inline std::uint64_t LoadLast(std::string_view text, std::size_t count) noexcept {
    const char* const end = text.data() + text.size();
    if (count == 0) return 0;
    if (text.size() >= 8) return LoadNumber<std::uint64_t>(end - 8) >> 8 * (8 - count);
    std::uint64_t number = 0;
    for (const char* byte = end; byte != end - count;) {
        number = number << 8 | static_cast<unsigned char>(*--byte);
    }
    return number;
}

}  // namespace lyr::internal
