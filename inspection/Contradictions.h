#pragma once

#include "inspection/Manifest.h"

#include <string>
#include <unordered_set>
#include <vector>

namespace lyr::inspection {

/// Adds an error for each thing that is said in two ways, in the lines or in the records of
/// libraries that one application uses: a class declared twice, a class that is also an interface,
/// a pair in two libraries, a name with two ids, an id with two names.
void CheckContradictions(const std::vector<Manifest>& manifests, const DictionaryLines& lines,
                         Findings& findings);

/// Adds an error for each class that records declare twice. Returns these classes: what else is
/// said of them twice follows from that.
std::unordered_set<std::string> CheckDeclaredClasses(const std::vector<Manifest>& manifests,
                                                     Findings& findings);

}  // namespace lyr::inspection
