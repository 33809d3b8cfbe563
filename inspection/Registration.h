#pragma once

#include "inspection/DictionaryLines.h"

#include <map>
#include <string>

namespace lyr::inspection {

struct Registered {
    /// Each pair, each interface and each class id once, with the place of the line that it comes
    /// from.
    DictionaryLines lines;
    /// The files that are not read to their end, with the last line that is read of each.
    std::map<std::string, int> ends;
};

/// What a process has in its dictionaries when it has read these lines, in their order. Adds an
/// error for each line that contradicts an earlier one, with both places; in .iidts and .clsidts
/// files nothing below such a line is read. Adds warnings for lines that say a thing again, or that
/// fill in what an earlier line left open.
Registered Register(const DictionaryLines& lines, Findings& findings);

/// Adds a warning for each interface of the pairs that no line gives an id.
void CheckInterfacesHaveIds(const DictionaryLines& registered, Findings& findings);

}  // namespace lyr::inspection
