#pragma once

#include "inspection/Manifest.h"

#include <vector>

namespace lyr::inspection {

/// Adds an error for each line that the records of its own library contradict: an extension that
/// does not extend the class or is none, an interface that the library was built with under another
/// id, a class that two libraries declare. What libraries without records do is not known.
void CheckRecords(const std::vector<Manifest>& manifests, const DictionaryLines& lines,
                  Findings& findings);

}  // namespace lyr::inspection
