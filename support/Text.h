#pragma once

#include <cstring>

namespace lyr::internal {

/// Whether two texts, neither of them null, have the same characters.
inline bool SameText(const char* a, const char* b) noexcept {
    return std::strcmp(a, b) == 0;
}

/// What a message shows for a text that may be missing.
inline const char* TextOrNull(const char* text) noexcept {
    return text != nullptr ? text : "(null)";
}

}  // namespace lyr::internal
