#pragma once

#include "inspection/Findings.h"
#include "inspection/RequestRoad.h"
#include "lyr/Catalog.h"

#include <cstddef>
#include <string>
#include <vector>

namespace lyr::program {

/// The findings and what they are about, as JSON of format version 1.
std::string JsonOf(const inspection::Findings& findings, std::size_t files, std::size_t libraries);

/// What a catalog has found, in the same format.
std::string JsonOf(const std::vector<const Entry*>& entries);

/// A road, in the same format; and what a process that has gone it says, empty for none.
std::string JsonOf(const inspection::RequestRoad& road, const std::string& loaded);

/// "yes", "no" or "unknown".
const char* WordFor(inspection::Verdict verdict);

}  // namespace lyr::program
