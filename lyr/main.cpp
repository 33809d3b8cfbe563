#include "LYRVersion.h"
#include "lyr/Commands.h"

#include <cstdio>
#include <exception>
#include <string>

namespace {

std::string Version() {
    return "lyr " + std::to_string(LYR_VERSION_MAJOR) + "." + std::to_string(LYR_VERSION_MINOR) +
           "." + std::to_string(LYR_VERSION_PATCH);
}

int Run(int count, char** words) {
    auto status = lyr::program::kGood;
    CLI::App program("Looks at component libraries and dictionary files.", "lyr");
    program.set_version_flag("--version", Version());
    program.require_subcommand(1);
    lyr::program::AddCheck(program, status);
    lyr::program::AddList(program, status);
    lyr::program::AddShow(program, status);
    lyr::program::AddExplain(program, status);
    lyr::program::AddWhy(program, status);
    lyr::program::AddGraph(program, status);
    lyr::program::AddManifest(program, status);
    lyr::program::AddTimeline(program, status);
    lyr::program::AddTrial(program);
    try {
        program.parse(count, words);
    } catch (const CLI::ParseError& error) {
        return program.exit(error) == 0 ? lyr::program::kGood : lyr::program::kWrongUsage;
    }
    return status;
}

}  // namespace

int main(int count, char** words) {
    try {
        return Run(count, words);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "lyr: %s\n", error.what());
        return lyr::program::kErrors;
    }
}
