#pragma once

#include <atomic>

namespace lyr {

/// How often an operation has ended in its refusal because memory was out. Whoever remembers an
/// absence for good compares the count before and after the search: an answer that a shortage may
/// have caused is given once, and not remembered.
inline std::atomic<unsigned> memoryShortages = 0;

}  // namespace lyr
