// lyr check: what would fail or surprise in folders of dictionaries and the libraries that they
// lead to.

#include "lyr/Json.h"
#include "lyr/LoadTrials.h"
#include "lyr/Selection.h"
#include "lyr/SurveyCommand.h"

#include <algorithm>
#include <cstdio>
#include <limits>
#include <set>
#include <string>

namespace lyr::program {

namespace {

using inspection::Findings;
using inspection::Severity;

struct Arguments {
    SurveyOptions places;
    LoadOptions load;
    Selection selection;
    std::string baselineToWrite;
    bool isStrict = false;
    bool showsAll = false;
    bool isJson = false;
};

/// The libraries that were found; those of several names count once.
std::size_t CountLibraries(const inspection::Survey& survey) {
    std::set<std::string> paths;
    for (const auto& [name, library] : survey.Libraries()) {
        if (library.file != nullptr) paths.insert(library.file->path);
    }
    return paths.size();
}

std::string Summary(const Findings& findings, const inspection::Survey& survey) {
    const std::size_t libraries = CountLibraries(survey);
    return inspection::Counted(findings.Count(Severity::Error), "error") + ", " +
           inspection::Counted(findings.Count(Severity::Warning), "warning") + " in " +
           inspection::Counted(survey.Files().size(), "file") + ", " + std::to_string(libraries) +
           (libraries == 1 ? " library" : " libraries");
}

Status Run(const Arguments& arguments) {
    inspection::Survey survey = arguments.places.Look();
    if (arguments.load.isWanted) TryLibraries(arguments.places, arguments.load, survey);
    Findings& findings = survey.Found();
    arguments.selection.Apply(findings);
    if (!arguments.baselineToWrite.empty()) WriteBaseline(arguments.baselineToWrite, findings);
    if (arguments.isJson) {
        std::puts(JsonOf(findings, survey.Files().size(), CountLibraries(survey)).c_str());
    } else {
        const std::size_t notes =
            arguments.showsAll ? std::numeric_limits<std::size_t>::max() : inspection::kNotesShown;
        std::fputs(findings.Lines(notes).c_str(), stdout);
        std::puts(Summary(findings, survey).c_str());
    }
    const bool hasWarnings = findings.Count(Severity::Warning) != 0;
    return findings.HasErrors() || (arguments.isStrict && hasWarnings) ? kErrors : kGood;
}

}  // namespace

void AddCheck(CLI::App& program, Status& status) {
    const auto [command, arguments] = AddSurveyCommand(
        program,
        {"check",
         "Says what would fail or surprise in folders of dictionary files and the libraries that "
         "they lead to, without loading any unless --load says so. The status is 0 without errors "
         "and 1 with them.",
         "Examples:\n"
         "  lyr check -d app/dictionary -l build/lib -p build/bin/app\n"
         "  lyr check -d app/dictionary --load --load-timeout 3\n"
         "  LYRDictionaryPath=dictionary lyr check --strict --ignore no-id:'*/old/*'"},
        status, Run);
    arguments->load.AddTo(*command);
    command->add_flag("--strict", arguments->isStrict, "Warnings, too, make the status 1");
    command->add_flag("--all", arguments->showsAll,
                      "All lines that a cause hits, and not three of them");
    command->add_option("--ignore", arguments->selection.ignored,
                        "KIND or KIND:GLOB: leaves findings of that kind out, in all files or in "
                        "those of such a path");
    command->add_option("--error", arguments->selection.errors,
                        "KIND: findings of that kind are errors");
    command->add_option("--baseline", arguments->selection.baseline,
                        "A file of findings that are known, and left out");
    command->add_option("--write-baseline", arguments->baselineToWrite,
                        "Writes such a file of what is found");
    command->add_flag("--json", arguments->isJson, "Writes JSON");
}

}  // namespace lyr::program
