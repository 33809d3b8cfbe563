#pragma once

#include "inspection/Findings.h"

#include <cstddef>
#include <string>

namespace lyr::program {

/// The findings and what they are about, as JSON of format version 1.
std::string JsonOf(const inspection::Findings& findings, std::size_t files, std::size_t libraries);

}  // namespace lyr::program
