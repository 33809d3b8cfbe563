#pragma once

#include "lyr/explain.h"

#include <cstddef>
#include <string>
#include <vector>

namespace lyr::internal {

/// What was asked.
struct Question {
    /// "IPrint for a Circle", "Circle is made".
    std::string what;
    /// With the id in braces behind the name, where both are known: "IPrint {9FF2...}".
    std::string asked;
    std::string className;
    std::string interfaceName;  ///< empty for a creation
    std::string id;             ///< of the interface or class, in braces; empty without one
    /// Whether the steps were noted at a request, and not for the explanation.
    bool isOfRequest = false;
    /// Whether the answer was given, and not only found out.
    bool isAnswered = false;
};

/// The step that decides; steps.size() for none.
std::size_t RootOf(const std::vector<Step>& steps);

/// Finds the step that decides and, for the steps that rest on a line of the dictionary files,
/// where it stands now; and writes the paragraph. Throws std::bad_alloc.
void Tell(const Question& question, Explanation& explanation);

}  // namespace lyr::internal
