#pragma once

#include "lyr/Commands.h"
#include "lyr/SurveyOptions.h"

#include <memory>

namespace lyr::program {

/// How a command is presented.
struct CommandText {
    const char* name;
    const char* purpose;
    const char* examples;
};

/// A command that looks at dictionaries and libraries, and what it is given; `Arguments` holds the
/// options of the survey as `places`.
template <typename Arguments>
struct SurveyCommand {
    CLI::App* app;
    std::shared_ptr<Arguments> arguments;
};

/// Adds the command, which sets `status` to what `run` gives. Its own options are the caller's.
template <typename Arguments>
SurveyCommand<Arguments> AddSurveyCommand(CLI::App& program, const CommandText& text,
                                          Status& status, Status (*run)(const Arguments&)) {
    const auto arguments = std::make_shared<Arguments>();
    CLI::App* const app = program.add_subcommand(text.name, text.purpose);
    arguments->places.AddTo(*app);
    app->footer(text.examples);
    app->final_callback([=, &status] { status = run(*arguments); });
    return {app, arguments};
}

}  // namespace lyr::program
