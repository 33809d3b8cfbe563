#pragma once

#include "inspection/DictionaryLines.h"

#include <string>
#include <vector>

namespace lyr::inspection {

/// A line that is near to one that is missing, and what differs.
struct NearPair {
    const PairLine* line;
    std::string difference;
};

/// At most three lines near to that of the first of the classes and the interface: such with a name
/// that is written nearly so, then those of other classes. No line of one of the classes, which are
/// asked, is among the latter. What is found points into `lines`.
std::vector<NearPair> NearPairs(const std::vector<std::string>& asked,
                                const std::string& interfaceName,
                                const std::vector<PairLine>& lines);

}  // namespace lyr::inspection
