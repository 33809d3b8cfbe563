#pragma once

#include "support/LoadNumber.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace lyr::internal {

/// A hash of a text for indexes; the tables have keys of their own. The standard library's takes
/// longer on names, of which every line of a dictionary file has several.
inline std::size_t TextHash(std::string_view text) noexcept {
    const auto mix = [](std::uint64_t a, std::uint64_t b) {
        __extension__ using Wide = unsigned __int128;
        const Wide product = static_cast<Wide>(a) * b;
        return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
    };
    constexpr std::uint64_t kFactor = 0x9E3779B97F4A7C15;
    const char* const end = text.data() + text.size();
    std::uint64_t hash = kFactor ^ text.size();
    std::uint64_t last = 0;
    if (text.size() >= 8) {
        for (const char* bytes = text.data(); bytes < end - 8; bytes += 8) {
            hash = mix(hash ^ LoadNumber<std::uint64_t>(bytes), 0xA0761D6478BD642F);
        }
        last = LoadNumber<std::uint64_t>(end - 8);  // overlaps the one before
    } else if (text.size() >= 4) {
        last = LoadNumber<std::uint32_t>(text.data());
        last = last << 32 | LoadNumber<std::uint32_t>(end - 4);
    } else {
        for (const char byte : text) last = last << 8 | static_cast<unsigned char>(byte);
    }
    return mix(hash ^ last, kFactor);
}

/// A text with its length and hash, for work that needs them more than once. A null text has none.
struct HashedText {
    const char* text = nullptr;
    std::size_t length = 0;
    std::size_t hash = 0;

    HashedText() = default;
    explicit HashedText(const char* s) noexcept : text(s) {
        if (s == nullptr) return;
        length = std::strlen(s);
        hash = TextHash({s, length});
    }
};

}  // namespace lyr::internal
