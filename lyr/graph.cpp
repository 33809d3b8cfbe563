// lyr graph: what belongs to what, for programs that draw.

#include "inspection/LibraryNames.h"
#include "lyr/SurveyCommand.h"

#include <cstdio>
#include <set>
#include <string>
#include <string_view>

namespace lyr::program {

namespace {

using inspection::Survey;

struct Arguments {
    SurveyOptions places;
    std::string wanted = "classes";
};

std::string Quoted(std::string_view name) {
    std::string quoted = "\"";
    for (const char c : name) {
        if (c == '"' || c == '\\') quoted.push_back('\\');
        quoted.push_back(c);
    }
    return quoted + "\"";
}

/// Collects arrows, each once and in order.
class Graph {
public:
    void AddArrow(std::string_view from, std::string_view to, std::string_view label) {
        std::string arrow = Quoted(from) + " -> " + Quoted(to);
        if (!label.empty()) arrow += " [label=" + Quoted(label) + "]";
        _lines.insert(arrow);
    }

    void AddBox(std::string_view name) { _lines.insert(Quoted(name) + " [shape=box]"); }

    void Print(const char* name) const {
        std::printf("digraph %s {\n    rankdir=LR;\n", name);
        for (const std::string& line : _lines) std::printf("    %s;\n", line.c_str());
        std::puts("}");
    }

private:
    std::set<std::string> _lines;
};

/// From each class, and through its extensions, to the libraries.
void PrintClasses(const Survey& survey) {
    Graph graph;
    for (const inspection::PairLine& line : survey.Lines().pairs) {
        const std::string library = "lib" + std::string(inspection::WithoutLib(line.library));
        graph.AddBox(library);
        const std::string& maker = line.extension.empty() ? line.className : line.extension;
        if (!line.extension.empty()) {
            graph.AddArrow(line.className, line.extension, line.interfaceName);
        }
        graph.AddArrow(maker, library, line.extension.empty() ? line.interfaceName : "");
    }
    graph.Print("classes");
}

std::string_view BaseOf(std::string_view path) {
    return path.substr(path.rfind('/') + 1);
}

/// From each library that lines name to what it needs, as far as that is found.
void PrintLibraries(Survey& survey) {
    Graph graph;
    for (const auto& [name, library] : survey.Libraries()) {
        graph.AddBox(library.file != nullptr ? BaseOf(library.file->path) : "lib" + name);
        if (library.file == nullptr) continue;
        const inspection::Closure& closure = survey.Loads().ClosureOf(*library.file);
        for (const inspection::LoaderFile* const file : closure.files) {
            if (!file->object) continue;
            for (const std::string_view needed : file->object->needed) {
                const auto found = closure.byName.find(needed);
                const bool isFound = found != closure.byName.end();
                graph.AddArrow(BaseOf(file->path), isFound ? BaseOf(found->second->path) : needed,
                               isFound ? "" : "not found");
            }
        }
    }
    graph.Print("libraries");
}

Status Run(const Arguments& arguments) {
    Survey survey = arguments.places.Look();
    if (arguments.wanted == "classes") {
        PrintClasses(survey);
    } else {
        PrintLibraries(survey);
    }
    return kGood;
}

}  // namespace

void AddGraph(CLI::App& program, Status& status) {
    const auto [command, arguments] = AddSurveyCommand(
        program,
        {"graph",
         "Writes a graph for dot: of the classes with their extensions and libraries, or of the "
         "libraries with what they need.",
         "Examples:\n  lyr graph libraries -d app/dictionary -l build/lib | dot -Tsvg"},
        status, Run);
    command->add_option("GRAPH", arguments->wanted, "classes or libraries")
        ->check(CLI::IsMember({"classes", "libraries"}))
        ->capture_default_str();
}

}  // namespace lyr::program
