#pragma once

#include "inspection/RequestRoad.h"
#include "lyr/SurveyOptions.h"

#include <CLI/CLI.hpp>
#include <string>

namespace lyr::program {

/// Whether libraries are loaded, each in a process of its own, and how long that may take.
struct LoadOptions {
    bool isWanted = false;
    double seconds = 10;

    /// Adds the options to the command; this object outlives it.
    void AddTo(CLI::App& command);
};

/// Loads each library that was found and lacks nothing that is known, and adds what shows then: a
/// refusal, a crash, an exit, a hang, and what only the libraries' code tells of lines. Throws
/// CLI::ValidationError for another image than this machine.
void TryLibraries(const SurveyOptions& places, const LoadOptions& options,
                  inspection::Survey& survey);

/// How a request is answered in a process that loads what it needs.
struct TriedRequest {
    inspection::Verdict verdict = inspection::Verdict::Unknown;
    /// What the component model says of it, for people; or how the process ended.
    std::string text;
};

/// Asks in a process of its own. Throws like the above.
TriedRequest TryRequest(const SurveyOptions& places, const LoadOptions& options,
                        const inspection::Survey& survey, const std::string& className,
                        const std::string& interfaceNameOrId);

}  // namespace lyr::program
