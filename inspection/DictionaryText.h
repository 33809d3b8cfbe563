#pragma once

#include "inspection/Findings.h"

#include <string>

namespace lyr::inspection {

/// Adds a warning for each way in which the text of a dictionary file surprises its reader: bytes
/// that make names which match nothing, lines that are cut, words that are dropped. One warning of
/// each kind, with the other lines as notes. What cannot be read is left to others to tell.
void CheckDictionaryText(const std::string& path, Findings& findings);

}  // namespace lyr::inspection
