#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace lyr::program {

/// This very program, started once more with a task: what may crash or hang does so there.
struct ChildTask {
    /// The command that the child runs.
    std::string command;
    /// What the child reads on its standard input.
    std::string input;
    /// Variables that it has in the place of ours; without a value those that it has not.
    std::vector<std::pair<std::string, std::string>> environment;
    std::chrono::milliseconds limit{};
};

/// How a child ended, and what it told.
struct ChildEnd {
    enum class Way { Exit, Signal, TimeLimit };

    Way way = Way::Exit;
    /// The status of its exit, or the number of the signal.
    int code = 0;
    /// What it wrote into the descriptor kReplyDescriptor.
    std::string reply;
    /// The last line that it wrote on its standard output or error.
    std::string lastLine;
};

/// Where a child writes what its parent is to read; its other output is swallowed.
inline constexpr int kReplyDescriptor = 3;

/// Runs the tasks, as many at once as there are processors, and gives their ends in their order. A
/// child that is not done within its limit is killed with all its process group; all are waited
/// for. Throws std::system_error when no child can be started.
std::vector<ChildEnd> RunChildren(const std::vector<ChildTask>& tasks);

}  // namespace lyr::program
