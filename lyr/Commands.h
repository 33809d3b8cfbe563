#pragma once

#include <CLI/CLI.hpp>

namespace lyr::program {

/// What a run of the program ends with; wrong usage ends with 2, in main, and what only libraries'
/// code could tell with 3.
enum Status : int { kGood = 0, kErrors = 1, kWrongUsage = 2, kNotKnown = 3 };

/// Adds the command by which the program tries libraries in a process of its own; users are not
/// told of it.
void AddTrial(CLI::App& program);

/// Each adds a command to the program and sets `status` when that command has run.
void AddCheck(CLI::App& program, Status& status);
void AddExplain(CLI::App& program, Status& status);
void AddGraph(CLI::App& program, Status& status);
void AddList(CLI::App& program, Status& status);
void AddManifest(CLI::App& program, Status& status);
void AddShow(CLI::App& program, Status& status);
void AddTimeline(CLI::App& program, Status& status);
void AddWhy(CLI::App& program, Status& status);

}  // namespace lyr::program
