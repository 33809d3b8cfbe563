#pragma once

#include "GUID.h"
#include "support/TextHash.h"

namespace lyr::internal {

/// The interned copies, for code that has to tell a lack of memory, which throws std::bad_alloc,
/// from the other reasons for null: a null argument, and a text that is too long for the store.
const char* InternText(const HashedText& text);
inline const char* InternText(const char* text) {
    return InternText(HashedText(text));
}
const GUID* InternGUID(const GUID* guid);

}  // namespace lyr::internal
