#pragma once

#include "support/ByteSum.h"
#include "support/GuidBytes.h"

#include <string_view>

namespace lyr::internal {

/// The 10-bit keys of the interface-name and class-id registries: signed bytes, the first with
/// weight 0. The key of an id is not that of the GUID store.
inline unsigned SignedKey(const GUID& id) {
    return WeightedByteSum<signed char>(GuidBytes(id), 0) & 0x3ff;
}

inline unsigned SignedKey(std::string_view name) {
    return WeightedByteSum<signed char>(name, 0) & 0x3ff;
}

}  // namespace lyr::internal
