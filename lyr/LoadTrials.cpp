#include "lyr/LoadTrials.h"

#include "inspection/Declarations.h"
#include "inspection/EntryPoints.h"
#include "inspection/LibraryCheck.h"
#include "inspection/LibraryNames.h"
#include "inspection/RecordCheck.h"
#include "lyr/ChildProcess.h"
#include "lyr/TrialRecords.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <set>
#include <unordered_map>
#include <vector>

namespace lyr::program {

namespace {

using inspection::LoaderFile;
using inspection::NamedLibrary;
using inspection::Note;
using inspection::PairLine;
using inspection::Severity;
using inspection::Survey;

/// A library that is tried, with the lines that lead to its file, whatever they call it.
struct Trial {
    const NamedLibrary* library = nullptr;
    std::vector<const PairLine*> pairs;
    std::set<std::string> functions;
};

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

std::string SecondsText(double seconds) {
    std::string text = std::to_string(seconds);
    text.erase(text.find_last_not_of('0') + 1);
    if (text.ends_with('.')) text.pop_back();
    return text + (text == "1" ? " second" : " seconds");
}

/// How a child ended that has not done all, and a kind for it.
std::pair<std::string, std::string> TextOf(const ChildEnd& end, const LoadOptions& options) {
    switch (end.way) {
        case ChildEnd::Way::TimeLimit:
            return {"load-timeout", "is not done after " + SecondsText(options.seconds)};
        case ChildEnd::Way::Signal:
            return {"load-crash", "ends the process by signal " + std::to_string(end.code) + ", " +
                                      ::strsignal(end.code)};
        case ChildEnd::Way::Exit:
            break;
    }
    return {"load-exit", "ends the process with status " + std::to_string(end.code)};
}

bool Holds(const std::vector<TrialRecord>& replies, const std::string& word) {
    return std::any_of(replies.begin(), replies.end(),
                       [&](const TrialRecord& reply) { return reply.front() == word; });
}

/// Adds what the trials have shown.
class Results {
public:
    Results(const LoadOptions& options, Survey& survey)
        : _options(options), _survey(survey), _declared(survey.Manifests()) {}

    void Add(const Trial& trial, const ChildEnd& end) {
        std::vector<TrialRecord> replies = RecordsOf(end.reply);
        std::erase_if(replies, [](const TrialRecord& reply) { return reply.empty(); });
        for (const TrialRecord& reply : replies) {
            if (reply[0] == "refused" && reply.size() > 1) AddRefusal(trial, reply[1]);
            if (reply[0] == "missing" && reply.size() > 1) AddMissing(trial, reply[1]);
            if (reply.size() > 3) AddUnknown(trial, reply);
        }
        if (!Holds(replies, "end")) AddEnd(trial, end, Holds(replies, "loaded"));
    }

private:
    inspection::Findings& Found() { return _survey.Found(); }

    static std::string NameOf(const Trial& trial) {
        return inspection::Shown(*trial.library->file);
    }

    /// What a library lacks that the program brings is no fault of its own.
    void AddRefusal(const Trial& trial, const std::string& words) {
        const bool isSymbol = words.find("undefined symbol") != std::string::npos;
        const inspection::Place& place = trial.library->lines.front().place;
        if (!isSymbol) {
            Found().AddError(place, NameOf(trial) + " does not load: " + words, "load-refused",
                             inspection::OtherLines(*trial.library));
        } else if (trial.library->problems.empty()) {
            Found().AddRemark(place,
                              NameOf(trial) +
                                  " loads only in the program, which brings what it "
                                  "needs: " +
                                  words,
                              "load-refused");
        }
    }

    /// What its file does not export either has been told.
    void AddMissing(const Trial& trial, const std::string& symbol) {
        for (const inspection::Manifest& manifest : _survey.Manifests()) {
            const bool isIts = manifest.library.path == trial.library->file->pathHere;
            if (!isIts || !manifest.library.exports.contains(symbol)) continue;
            Found().AddError(trial.library->lines.front().place,
                             "the loader does not find " + symbol + " in " + NameOf(trial) +
                                 ", though its file exports it; link it anew",
                             "no-entry-point");
        }
    }

    void AddUnknown(const Trial& trial, const TrialRecord& reply) {
        const std::string& name = reply[1];
        const std::string& state = reply[3];
        for (const PairLine* const line : trial.pairs) {
            if (reply[0] == "extension" && line->extension == name && line->className == reply[2]) {
                AddExtension(trial, *line, state);
            }
            const bool isOther = reply[0] == "leaf" && line->leaf == name && state == "other";
            if (isOther && _told.insert(line).second) {
                Found().AddError(line->place,
                                 "the leaf interface " + name + " is not derived from " +
                                     line->interfaceName +
                                     "; correct the name behind ITFLEAF, or the base of " + name,
                                 "leaf");
            }
        }
    }

    void AddExtension(const Trial& trial, const PairLine& line, const std::string& state) {
        // What records say of an extension has been compared.
        if (state == "extends" || _declared.Find(line.extension) != nullptr) return;
        if (!_told.insert(&line).second) return;
        std::string text = "the extension " + line.extension + " does not extend " +
                           line.className + "; name the class in its source, or take the line out";
        if (state == "absent") {
            text = NameOf(trial) + " brings no meta-object of the extension " + line.extension +
                   "; make it while the library loads, or correct the name behind EXTENDED_BY";
        } else if (state == "class") {
            text = line.extension +
                   " is a class and no extension; take EXTENDED_BY out, or make "
                   "it an extension";
        }
        Found().AddError(line.place, text, "extension");
    }

    void AddEnd(const Trial& trial, const ChildEnd& end, bool hasLoaded) {
        const auto [kind, text] = TextOf(end, _options);
        std::vector<Note> notes;
        if (!end.lastLine.empty()) {
            notes.push_back({{trial.library->file->path}, "its last line was: " + end.lastLine});
        }
        for (const Note& other : inspection::OtherLines(*trial.library)) notes.push_back(other);
        Found().AddError(trial.library->lines.front().place,
                         NameOf(trial) + " " + text +
                             (hasLoaded ? " when it has been loaded" : " while it is loaded") +
                             "; look at what it does when it is initialised",
                         kind, notes);
    }

    const LoadOptions& _options;
    Survey& _survey;
    const inspection::Declarations _declared;
    std::set<const PairLine*> _told;
};

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
    Results results(options, survey);
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
        tried.text = "a process that asks " + TextOf(end, options).second +
                     (end.lastLine.empty() ? "" : "; its last line was: " + end.lastLine);
    }
    return tried;
}

}  // namespace lyr::program
