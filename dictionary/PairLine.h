#pragma once

#include "support/Text.h"

namespace lyr::internal {

/// Takes `value` for a keyword that may stand once; false when it is missing or a second one.
inline bool TakeOnce(const char*& taken, const char* value) {
    if (taken != nullptr || value == nullptr) return false;
    taken = value;
    return true;
}

/// Reads the pairs of keyword and value behind the three names of a line of a ".dicts" file; false
/// for a bad line. `itfLeaf` and `extendedBy` are null before.
inline bool ReadPairLine(char* const* words, int count, const char*& itfLeaf,
                         const char*& extendedBy) {
    if (words == nullptr || count < 3) return false;
    if (words[0] == nullptr || words[1] == nullptr || words[2] == nullptr) return false;
    for (int i = 3; i < count; i += 2) {
        const char* const keyword = words[i];
        if (i + 1 == count || keyword == nullptr) return false;
        const bool isLeaf = SameText(keyword, "ITFLEAF");
        if (!isLeaf && !SameText(keyword, "EXTENDED_BY")) return false;
        if (!TakeOnce(isLeaf ? itfLeaf : extendedBy, words[i + 1])) return false;
    }
    return true;
}

}  // namespace lyr::internal
