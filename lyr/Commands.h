#pragma once

#include <CLI/CLI.hpp>

namespace lyr::program {

/// What a run of the program ends with; wrong usage ends with 2, in main.
enum Status : int { kGood = 0, kErrors = 1, kWrongUsage = 2 };

/// Each adds a command to the program and sets `status` when that command has run.
void AddCheck(CLI::App& program, Status& status);
void AddGraph(CLI::App& program, Status& status);
void AddList(CLI::App& program, Status& status);
void AddManifest(CLI::App& program, Status& status);
void AddShow(CLI::App& program, Status& status);
void AddTimeline(CLI::App& program, Status& status);
void AddWhy(CLI::App& program, Status& status);

}  // namespace lyr::program
