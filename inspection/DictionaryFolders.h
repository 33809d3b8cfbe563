#pragma once

#include "inspection/Findings.h"

#include <string>
#include <string_view>
#include <vector>

namespace lyr::inspection {

/// The entries of a text like that of LYRDictionaryPath, empty ones left out.
std::vector<std::string> SplitPath(std::string_view path);

/// The dictionary files that a process reads of these folders, in its order. Adds warnings for
/// folders that are not there or are named twice, and for files that others hide.
std::vector<std::string> DictionaryFilesOf(const std::vector<std::string>& folders,
                                           Findings& findings);

}  // namespace lyr::inspection
