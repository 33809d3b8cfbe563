// lyr why: which lines and which libraries lead to the load of a library.

#include "inspection/LibraryNames.h"
#include "lyr/SurveyCommand.h"

#include <algorithm>
#include <cstdio>
#include <deque>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace lyr::program {

namespace {

using inspection::LoaderFile;
using inspection::NamedLibrary;
using inspection::Survey;

struct Arguments {
    SurveyOptions places;
    std::string library;
    bool wantsAll = false;
};

/// Files, each of which needs the next. Empty for none.
using Chain = std::vector<const LoaderFile*>;

/// Whether the user's word, a name of a dictionary, a file or what libraries need, means the file.
bool Means(const std::string& word, const LoaderFile& file) {
    if (word == file.path || inspection::LeadsToLibraryFile(word, file.path)) return true;
    const std::string_view path = file.path;
    return path.substr(path.rfind('/') + 1) == word || (file.object && file.object->soname == word);
}

/// The shortest chain of needs from the file to one that the word means.
Chain FindChain(const LoaderFile& start, const std::string& word,
                const inspection::Closure& closure) {
    std::unordered_map<const LoaderFile*, const LoaderFile*> neededBy{{&start, nullptr}};
    std::deque<const LoaderFile*> waiting{&start};
    while (!waiting.empty()) {
        const LoaderFile* const file = waiting.front();
        waiting.pop_front();
        if (Means(word, *file)) {
            Chain chain;
            for (const LoaderFile* one = file; one != nullptr; one = neededBy[one]) {
                chain.insert(chain.begin(), one);
            }
            return chain;
        }
        if (!file->object) continue;
        for (const std::string_view name : file->object->needed) {
            const auto found = closure.byName.find(name);
            if (found == closure.byName.end()) continue;
            if (neededBy.try_emplace(found->second, file).second) {
                waiting.push_back(found->second);
            }
        }
    }
    return {};
}

struct Road {
    const NamedLibrary* library;
    Chain chain;
};

/// All roads from lines to the library, the shortest first.
std::vector<Road> RoadsTo(Survey& survey, const std::string& word) {
    std::vector<Road> roads;
    for (const auto& [name, library] : survey.Libraries()) {
        if (library.file == nullptr) continue;
        Chain chain = FindChain(*library.file, word, survey.Loads().ClosureOf(*library.file));
        if (!chain.empty()) roads.push_back({&library, std::move(chain)});
    }
    std::stable_sort(roads.begin(), roads.end(),
                     [](const Road& a, const Road& b) { return a.chain.size() < b.chain.size(); });
    return roads;
}

void Print(const Road& road, bool wantsAll) {
    const std::vector<inspection::Note>& lines = road.library->lines;
    const std::size_t shown = wantsAll ? lines.size() : 1;
    for (std::size_t i = 0; i < shown; ++i) {
        std::printf("%s:%d: %s\n", lines[i].place.file.c_str(), lines[i].place.line,
                    lines[i].text.c_str());
    }
    if (shown < lines.size()) {
        std::printf("  and %s more\n", inspection::Counted(lines.size() - shown, "line").c_str());
    }
    for (std::size_t i = 0; i < road.chain.size(); ++i) {
        std::printf("  %s %s\n", i == 0 ? "loads" : "which needs",
                    inspection::Shown(*road.chain[i]).c_str());
    }
}

Status Run(const Arguments& arguments) {
    Survey survey = arguments.places.Look();
    const std::vector<Road> roads = RoadsTo(survey, arguments.library);
    if (roads.empty()) {
        std::fprintf(stderr, "lyr: no line and no library leads to %s\n",
                     arguments.library.c_str());
        return kErrors;
    }
    const std::size_t shown = arguments.wantsAll ? roads.size() : 1;
    for (std::size_t i = 0; i < shown; ++i) Print(roads[i], arguments.wantsAll);
    if (shown < roads.size()) {
        std::printf("and from %zu more libraries; --all shows them\n", roads.size() - shown);
    }
    return kGood;
}

}  // namespace

void AddWhy(CLI::App& program, Status& status) {
    const auto [command, arguments] = AddSurveyCommand(
        program,
        {"why",
         "Says which line and which libraries lead to the load of a library: the shortest chain. "
         "The status is 1 when there is none.",
         "Examples:\n  lyr why libz.so.1 -d app/dictionary -l build/lib"},
        status, Run);
    command
        ->add_option("LIBRARY", arguments->library,
                     "As dictionaries name it, or the name of a file")
        ->required();
    command->add_flag("--all", arguments->wantsAll, "All chains and lines");
}

}  // namespace lyr::program
