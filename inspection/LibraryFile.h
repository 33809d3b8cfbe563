#pragma once

#include "inspection/Findings.h"

#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

namespace lyr::inspection {

/// What a shared library's file holds, for whatever processor it is; the library is not loaded.
struct LibraryFile {
    std::string path;
    /// The texts of its section "lyr_manifest", in their order.
    std::vector<std::string> records;
    /// The names that other libraries and the loader find in it.
    std::unordered_set<std::string> exports;
    /// Names with "LYRSysTS" in them that it defines and does not export, unless it is stripped.
    std::unordered_set<std::string> inside;
    /// Whether it has nothing but what the loader needs.
    bool isStripped = true;
};

/// Reads the file. None, with an error added, when it cannot be read or is no shared library.
std::optional<LibraryFile> ReadLibraryFile(const std::string& path, Findings& findings);

}  // namespace lyr::inspection
