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

/// Sends for the memory that the first look for them reads, which arrives while the caller does
/// something else.
void PrefetchText(const HashedText& text);
void PrefetchGUID(std::size_t hash);

}  // namespace lyr::internal
