#pragma once

#include "GUID.h"

namespace lyr::internal {

/// The interned copies, for code that has to tell a lack of memory, which throws std::bad_alloc,
/// from the other reasons for null: a null argument, and a text that is too long for the store.
const char* InternText(const char* text);
const GUID* InternGUID(const GUID* guid);

}  // namespace lyr::internal
