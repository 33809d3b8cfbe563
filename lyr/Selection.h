#pragma once

#include "inspection/Findings.h"

#include <string>
#include <vector>

namespace lyr::program {

/// Which findings a user wants to hear of.
struct Selection {
    /// KIND or KIND:GLOB, the latter for the findings in files of such a path.
    std::vector<std::string> ignored;
    /// Kinds that count as errors.
    std::vector<std::string> errors;
    /// A file of findings that are known; empty for none.
    std::string baseline;

    /// Takes out what is ignored or known, and raises what counts as an error. Throws
    /// CLI::ValidationError for a baseline that cannot be read.
    void Apply(inspection::Findings& findings) const;
};

/// Writes the findings as a baseline: a line each, with kind, file and the text of the line where
/// it stands, so that it is known again when lines move. Throws std::runtime_error.
void WriteBaseline(const std::string& path, const inspection::Findings& findings);

}  // namespace lyr::program
