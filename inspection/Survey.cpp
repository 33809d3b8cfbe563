#include "inspection/Survey.h"

#include "inspection/DictionaryFolders.h"
#include "inspection/DictionaryText.h"
#include "inspection/LibraryCheck.h"
#include "inspection/LibraryNames.h"
#include "inspection/Registration.h"
#include "platform/LibraryFiles.h"

#include <algorithm>

namespace lyr::inspection {

Survey::Survey(const std::vector<std::string>& folders, SearchPlaces places)
    : _places(std::move(places)) {
    ReadFiles(folders);
    _search = std::make_unique<LibrarySearch>(_places);
    _loads = std::make_unique<LoadCheck>(*_search);
    NameLibraries();
    for (auto& [name, library] : _libraries) Locate(library);
    _manifests = ReadManifests(_libraries, _findings);
    CheckLibraries(*this, *_search, _findings);
    _findings.Sort();
}

void Survey::ReadFiles(const std::vector<std::string>& folders) {
    std::vector<std::string> foldersHere;
    foldersHere.reserve(folders.size());
    for (const std::string& folder : folders) {
        foldersHere.push_back(_places.image.PathHere(folder));
    }
    _files = DictionaryFilesOf(foldersHere, _findings);
    DictionaryLines all;
    for (const std::string& file : _files) {
        const auto before = _findings.All().size();
        ReadDictionaryFile(file, BadLine::EndsTheFile, all, _findings);
        const bool isRead =
            _findings.All().size() == before || _findings.All().back().kind != "unreadable";
        if (isRead) CheckDictionaryText(file, _findings);
    }
    Registered registered = Register(all, _findings);
    _lines = std::move(registered.lines);
    // What stands below the end of the reading is not met.
    std::erase_if(_findings.All(), [&](const Finding& finding) {
        const auto end = registered.ends.find(finding.place.file);
        return end != registered.ends.end() && finding.place.line > end->second;
    });
    CheckInterfacesHaveIds(_lines, _findings);
}

void Survey::NameLibraries() {
    const auto name = [&](const auto& line) {
        const std::string library(WithoutLib(line.library));
        if (library.empty() && line.library.empty()) return;
        NamedLibrary& named = _libraries[library];
        named.name = library;
        named.lines.push_back({line.place, line.Text()});
    };
    for (const PairLine& line : _lines.pairs) name(line);
    for (const ClassLine& line : _lines.classes) name(line);
}

/// Tries the files that the name may mean as the library manager does: the first that loads, else
/// the first that is there.
void Survey::Locate(NamedLibrary& library) {
    internal::LibraryFiles files(library.name.c_str());
    while (const char* const name = files.Next()) {
        library.tried.emplace_back(name);
        FoundLibrary found{_loads->LoadedAtStart(name), nullptr};
        if (found.file == nullptr) found = _search->Find(name, {});
        if (library.foreign == nullptr) library.foreign = found.foreign;
        if (found.file == nullptr) continue;
        std::vector<LoadProblem> problems;
        if (found.file->object) problems = _loads->ProblemsOf(*found.file);
        const bool loads =
            found.file->object && found.file->object->whyNotLoaded.empty() &&
            std::none_of(problems.begin(), problems.end(), [](const LoadProblem& problem) {
                return problem.severity == Severity::Error;
            });
        if (library.file != nullptr && !loads) continue;
        library.file = found.file;
        library.problems = std::move(problems);
        if (loads) return;
    }
}

}  // namespace lyr::inspection
