#pragma once

#include "explanation/FilesNow.h"

#include <string>
#include <vector>

namespace lyr::internal {

/// A line that is nearly the one that is missing, and what differs.
struct NearLine {
    const FileLine* line;
    std::string difference;
};

/// At most three lines of pairs: first those that differ in a few letters of one name, then those
/// of the same interface and another class. They point into `files`. Throws std::bad_alloc.
std::vector<NearLine> NearLines(const std::string& className, const std::string& interfaceName,
                                const FilesNow& files);

}  // namespace lyr::internal
