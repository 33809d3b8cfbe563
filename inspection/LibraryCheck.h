#pragma once

#include "inspection/Survey.h"

#include <map>
#include <string>
#include <vector>

namespace lyr::inspection {

/// The records of the libraries that were found. Adds errors for records that are not understood.
std::vector<Manifest> ReadManifests(const std::map<std::string, NamedLibrary>& libraries,
                                    Findings& findings);

/// Adds what keeps the lines' libraries from being found, loaded and asked: one finding for each
/// cause, with the lines that it hits.
void CheckLibraries(Survey& survey, const LibrarySearch& search, Findings& findings);

}  // namespace lyr::inspection
