// lyr list and lyr show: what folders of dictionaries speak of, and where.

#include "lyr/Catalog.h"
#include "lyr/Json.h"
#include "lyr/SurveyCommand.h"

#include <cstdio>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace lyr::program {

namespace {

struct Arguments {
    SurveyOptions places;
    std::string wanted;
    bool isJson = false;
};

/// The words of the command, and the kinds that they mean.
constexpr std::pair<const char*, const char*> kKinds[] = {{"classes", "class"},
                                                          {"extensions", "extension"},
                                                          {"interfaces", "interface"},
                                                          {"libraries", "library"},
                                                          {"files", "file"}};

std::string PlaceText(const inspection::Place& place) {
    return place.file + ":" + std::to_string(place.line);
}

/// One line: the name, what belongs to it, and where it is met first.
void PrintShort(const Entry& entry) {
    std::string text = entry.name;
    for (const std::string& fact : entry.facts) text += "  " + fact;
    if (!entry.lines.empty()) text += "  " + PlaceText(entry.lines.front().place);
    std::puts(text.c_str());
}

void PrintWhole(const Entry& entry) {
    std::printf("%s %s\n", entry.kind.c_str(), entry.name.c_str());
    for (const std::string& fact : entry.facts) std::printf("  %s\n", fact.c_str());
    for (const inspection::Note& line : entry.lines) {
        std::printf("  %s: %s\n", PlaceText(line.place).c_str(), line.text.c_str());
    }
}

void Print(const std::vector<const Entry*>& entries, bool isJson, void (*print)(const Entry&)) {
    if (isJson) {
        std::puts(JsonOf(entries).c_str());
        return;
    }
    for (const Entry* const entry : entries) print(*entry);
}

Status List(const Arguments& arguments) {
    const inspection::Survey survey = arguments.places.Look();
    const Catalog catalog(survey);
    std::vector<const Entry*> entries;
    for (const auto& [word, kind] : kKinds) {
        if (!arguments.wanted.empty() && arguments.wanted != word) continue;
        const std::vector<const Entry*> ofKind = catalog.OfKind(kind);
        if (arguments.wanted.empty() && !arguments.isJson && !ofKind.empty()) {
            std::printf("%s:\n", word);
            Print(ofKind, false, PrintShort);
        }
        entries.insert(entries.end(), ofKind.begin(), ofKind.end());
    }
    if (!arguments.wanted.empty() || arguments.isJson) {
        Print(entries, arguments.isJson, PrintShort);
    }
    return kGood;
}

Status Show(const Arguments& arguments) {
    const inspection::Survey survey = arguments.places.Look();
    const Catalog catalog(survey);
    const std::vector<const Entry*> entries = catalog.Find(arguments.wanted);
    Print(entries, arguments.isJson, PrintWhole);
    if (!entries.empty()) return kGood;
    std::fprintf(stderr, "lyr: nothing is called %s in %s\n", arguments.wanted.c_str(),
                 inspection::Counted(survey.Files().size(), "file").c_str());
    return kErrors;
}

void AddJson(CLI::App& command, Arguments& arguments) {
    command.add_flag("--json", arguments.isJson, "Writes JSON");
}

}  // namespace

void AddList(CLI::App& program, Status& status) {
    const auto [command, arguments] = AddSurveyCommand(
        program,
        {"list",
         "Lists what folders of dictionary files speak of: a line each with its name, its ids or "
         "its file, and where it is met first. Lines that a process does not take are left out.",
         "Examples:\n  lyr list classes -d app/dictionary"},
        status, List);
    AddJson(*command, *arguments);
    std::set<std::string> words;
    for (const auto& [word, kind] : kKinds) words.insert(word);
    command->add_option("KIND", arguments->wanted, "All kinds, unless one is named")
        ->check(CLI::IsMember(words));
}

void AddShow(CLI::App& program, Status& status) {
    const auto [command, arguments] = AddSurveyCommand(
        program,
        {"show",
         "Shows what is known of a class, an interface, an extension, a library or an id, with the "
         "lines that name it. The status is 1 when nothing has the name.",
         "Examples:\n  lyr show Circle -d app/dictionary -l build/lib"},
        status, Show);
    AddJson(*command, *arguments);
    command->add_option("NAME", arguments->wanted, "A name, or an id with or without braces")
        ->required();
}

}  // namespace lyr::program
