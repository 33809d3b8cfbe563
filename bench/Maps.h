#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

#if defined(LYR_BENCH_ABSL)
#include <absl/container/flat_hash_map.h>
#endif

namespace bench {

// The dictionary as a user would write it: pairs of class and interface name, and their libraries.
// Looked up by the caller's own texts, without a copy of them.

using NamePair = std::pair<std::string, std::string>;
using NamePairView = std::pair<std::string_view, std::string_view>;

struct SameNames {
    using is_transparent = void;
    bool operator()(const NamePairView& a, const NamePairView& b) const { return a == b; }
};

struct StdHash {
    using is_transparent = void;
    std::size_t operator()(const NamePairView& names) const {
        const std::hash<std::string_view> hash;
        return hash(names.first) * 31 + hash(names.second);
    }
};
using StdMap = std::unordered_map<NamePair, std::string, StdHash, SameNames>;

#if defined(LYR_BENCH_ABSL)
struct AbslHash {
    using is_transparent = void;
    std::size_t operator()(const NamePairView& names) const {
        return absl::Hash<NamePairView>()(names);
    }
};
using AbslMap = absl::flat_hash_map<NamePair, std::string, AbslHash, SameNames>;
#endif

}  // namespace bench
