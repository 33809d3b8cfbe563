#pragma once

#include "inspection/Survey.h"

#include <CLI/CLI.hpp>
#include <string>

namespace lyr::program {

/// Where a command finds dictionaries and libraries.
struct SurveyOptions {
    std::string dictionaries;
    std::string libraries;
    std::string programFile;
    std::string root;

    /// Adds the options to the command; this object outlives it.
    void AddTo(CLI::App& command);

    /// The folders of dictionaries, from the option or else the environment.
    std::string DictionaryPath() const;

    /// Looks at all of it. Throws CLI::ValidationError when no dictionaries are named.
    inspection::Survey Look() const;
};

}  // namespace lyr::program
