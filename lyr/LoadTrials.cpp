#include "lyr/LoadTrials.h"

#include "inspection/EntryPoints.h"
#include "inspection/LibraryCheck.h"
#include "inspection/LibraryNames.h"
#include "lyr/ChildProcess.h"
#include "lyr/TrialRecords.h"
#include "lyr/TrialResults.h"

#include <algorithm>
#include <unordered_map>
#include <vector>

namespace lyr::program {

namespace {

using inspection::LoaderFile;
using inspection::NamedLibrary;
using inspection::PairLine;
using inspection::Severity;
using inspection::Survey;

bool LacksNothing(const NamedLibrary& library, const Survey& survey) {
    if (library.file == nullptr || !inspection::WrongFile(library, survey.Search()).empty()) {
        return false;
    }
    return std::none_of(library.problems.begin(), library.problems.end(),
                        [](const auto& problem) { return problem.severity == Severity::Error; });
}

std::vector<Trial> TrialsOf(const Survey& survey) {
    std::vector<Trial> trials;
    std::unordered_map<const LoaderFile*, std::size_t> ofFile;
    for (const auto& [name, library] : survey.Libraries()) {
        if (!LacksNothing(library, survey)) continue;
        if (ofFile.try_emplace(library.file, trials.size()).second)
            trials.push_back({&library, {}, {}});
    }
    const auto find = [&](const std::string& libraryName) -> Trial* {
        const auto named =
            survey.Libraries().find(std::string(inspection::WithoutLib(libraryName)));
        if (named == survey.Libraries().end()) return nullptr;
        const auto trial = ofFile.find(named->second.file);
        return trial == ofFile.end() ? nullptr : &trials[trial->second];
    };
    for (const PairLine& line : survey.Lines().pairs) {
        Trial* const trial = find(line.library);
        if (trial == nullptr || line.interfaceName == "MetaObject") continue;
        trial->pairs.push_back(&line);
        trial->functions.insert(inspection::EntryPointOf(line).Symbol());
    }
    for (const inspection::ClassLine& line : survey.Lines().classes) {
        Trial* const trial = find(line.library);
        if (trial != nullptr) trial->functions.insert(inspection::kClassObjectFunction);
    }
    return trials;
}

std::string PathToLoad(const LoaderFile& file) {
    return file.path.find('/') == std::string::npos ? "./" + file.path : file.path;
}

std::unordered_map<std::string, std::string> IdsOf(const Survey& survey) {
    std::unordered_map<std::string, std::string> ids;
    for (const auto& line : survey.Lines().interfaces) ids.emplace(line.name, line.iid);
    return ids;
}

std::string InputOf(const Trial& trial, const std::unordered_map<std::string, std::string>& ids) {
    std::string input = TextOf({"library", PathToLoad(*trial.library->file)});
    for (const std::string& symbol : trial.functions) input += TextOf({"function", symbol});
    for (const PairLine* const line : trial.pairs) {
        if (!line->extension.empty()) {
            input += TextOf({"extension", line->extension, line->className});
        }
        const auto id = ids.find(line->interfaceName);
        if (!line->leaf.empty() && id != ids.end()) {
            input += TextOf({"leaf", line->leaf, id->second});
        }
    }
    return input;
}

ChildTask TaskOf(const SurveyOptions& places, const LoadOptions& options, const Survey& survey,
                 std::string input) {
    std::string folders;
    for (const std::string& folder : survey.Search().FoldersOfProcess()) {
        folders.append(folders.empty() ? "" : ":").append(folder);
    }
    const std::chrono::duration<double> limit(options.seconds);
    return {kTrialCommand,
            std::move(input),
            {{"LD_LIBRARY_PATH", folders},
             {"LYRDictionaryPath", places.DictionaryPath()},
             {"LYRDebug", ""}},
            std::chrono::duration_cast<std::chrono::milliseconds>(limit)};
}

void RefuseImages(const SurveyOptions& places) {
    if (places.root.empty()) return;
    throw CLI::ValidationError("--load", "libraries of another image cannot be loaded here");
}

}  // namespace

void LoadOptions::AddTo(CLI::App& command) {
    CLI::Option* const load = command.add_flag(
        "--load", isWanted, "Loads the libraries, in processes of their own, to know more");
    command.add_option("--load-timeout", seconds, "SECONDS that one may take to load, at most")
        ->check(CLI::Range(0.01, 86400.0))
        ->capture_default_str()
        ->needs(load);
}

void TryLibraries(const SurveyOptions& places, const LoadOptions& options, Survey& survey) {
    RefuseImages(places);
    const std::vector<Trial> trials = TrialsOf(survey);
    const auto ids = IdsOf(survey);
    std::vector<ChildTask> tasks;
    tasks.reserve(trials.size());
    for (const Trial& trial : trials) {
        tasks.push_back(TaskOf(places, options, survey, InputOf(trial, ids)));
    }
    const std::vector<ChildEnd> ends = RunChildren(tasks);
    TrialResults results(options.seconds, survey);
    for (std::size_t i = 0; i < trials.size(); ++i) results.Add(trials[i], ends[i]);
    survey.Found().Sort();
}

TriedRequest TryRequest(const SurveyOptions& places, const LoadOptions& options,
                        const Survey& survey, const std::string& className,
                        const std::string& interfaceNameOrId) {
    RefuseImages(places);
    // A class and its bases are known when the libraries are there that describe them.
    std::string input;
    for (const Trial& trial : TrialsOf(survey)) {
        const auto makes = [&](const PairLine* line) {
            return line->className == className && line->interfaceName == "CreateInterface";
        };
        const auto& pairs = trial.pairs;
        if (std::any_of(pairs.begin(), pairs.end(), makes)) {
            input += TextOf({"library", PathToLoad(*trial.library->file)});
        }
    }
    input += TextOf({"explain", className, interfaceNameOrId});
    const ChildEnd end = RunChildren({TaskOf(places, options, survey, input)}).front();
    TriedRequest tried;
    for (const TrialRecord& reply : RecordsOf(end.reply)) {
        if (reply.size() < 3 || reply[0] != "answer") continue;
        tried.text = reply[2];
        if (reply[1] == "yes") tried.verdict = inspection::Verdict::Yes;
        if (reply[1] == "no") tried.verdict = inspection::Verdict::No;
    }
    if (tried.text.empty()) {
        tried.text = "a process that asks " + WordsOf(end, options.seconds) +
                     (end.lastLine.empty() ? "" : "; its last line was: " + end.lastLine);
    }
    return tried;
}

}  // namespace lyr::program
