#pragma once

#include <atomic>

namespace lyr {

/// How often memory has run out in what an absence may follow from: an addition to the dictionary
/// or to a registry, the reading of the files, the loading of a library. Whoever remembers an
/// absence for good compares the count before and after the search: an answer that a shortage may
/// have caused is given once, and not remembered.
inline std::atomic<unsigned> memoryShortages = 0;

}  // namespace lyr
