#include "inspection/LibraryCheck.h"

#include "inspection/EntryPoints.h"
#include "inspection/LibraryNames.h"
#include "inspection/RecordCheck.h"
#include "lyr/explain.h"

#include <algorithm>
#include <deque>
#include <dirent.h>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace lyr::inspection {

namespace {

std::vector<std::string> FilesIn(const std::string& folder) {
    std::vector<std::string> names;
    DIR* const open = ::opendir(folder.c_str());
    if (open == nullptr) return names;
    while (const dirent* const entry = ::readdir(open)) names.emplace_back(entry->d_name);
    ::closedir(open);
    return names;
}

std::string PlacesText(const SearchPlaces& places) {
    std::string text;
    for (const std::string& folder : places.folders) text += folder + ", ";
    for (const std::string& folder : places.fromEnvironment) text += folder + ", ";
    return text + "the program's old run path, the loader's cache and the system's folders";
}

void AddNotFound(const NamedLibrary& library, const SearchPlaces& places, Findings& findings) {
    const std::string line = "\"" + library.lines.front().text + "\" needs ";
    const bool isCutPath =
        library.name.find('/') != std::string::npos &&
        library.lines.front().text.find(" lib" + library.name) != std::string::npos;
    const std::string near = NearFiles(library, places);
    findings.AddError(library.lines.front().place,
                      line + "a library that is not found: " + WhereNotFound(library, places) +
                          (near.empty() ? "" : "; there is " + near) +
                          (isCutPath ? "; a leading \"lib\" is dropped, also of a folder's name, "
                                       "which \"./\" before it prevents"
                                     : ""),
                      "library-not-found", OtherLines(library));
}

/// Adds what is wrong with the library's own file, whatever it needs; true when there is anything.
bool AddWrongFile(const NamedLibrary& library, const LibrarySearch& search, Findings& findings) {
    if (library.file == nullptr && library.foreign == nullptr) {
        AddNotFound(library, search.Places(), findings);
        return true;
    }
    const std::string wrong = WrongFile(library, search);
    if (wrong.empty()) return false;
    findings.AddError(library.lines.front().place, wrong,
                      library.file == nullptr ? "other-processor" : "no-library",
                      OtherLines(library));
    return true;
}

/// Load problems by their cause: the first library that meets one has the finding, the others stand
/// in its notes.
class Causes {
public:
    void Add(const LoadProblem& problem, const NamedLibrary& library) {
        Finding& finding = _findings[{problem.kind, problem.subject}];
        if (finding.text.empty()) {
            finding = {library.lines.front().place, problem.severity, problem.text, problem.kind,
                       OtherLines(library)};
            return;
        }
        for (const Note& line : library.lines) {
            finding.notes.push_back({line.place, "so does \"" + line.text + "\""});
        }
    }

    void Tell(Findings& findings) const {
        for (const auto& [cause, finding] : _findings) findings.All().push_back(finding);
    }

private:
    std::map<std::pair<std::string, std::string>, Finding> _findings;
};

/// What is missing of the libraries that were found, by the names that lines have for these.
class Exports {
public:
    explicit Exports(Survey& survey) : _survey(survey) {
        for (const Manifest& manifest : survey.Manifests()) {
            _ofPath.emplace(manifest.library.path, nullptr);
        }
        for (const auto& [name, library] : survey.Libraries()) {
            if (library.file != nullptr) Take(*library.file);
        }
    }

    MissingFunctions* Find(const std::string& libraryName) {
        const auto named = _survey.Libraries().find(std::string(WithoutLib(libraryName)));
        if (named == _survey.Libraries().end() || named->second.file == nullptr) return nullptr;
        const auto found = _ofPath.find(named->second.file->pathHere);
        return found == _ofPath.end() ? nullptr : found->second;
    }

    void Tell(Findings& findings) const {
        for (const MissingFunctions& missing : _missing) missing.Tell(findings);
    }

private:
    void Take(const LoaderFile& file) {
        const auto known = _ofPath.find(file.pathHere);
        if (known == _ofPath.end() || known->second != nullptr) return;
        for (const Manifest& manifest : _survey.Manifests()) {
            if (manifest.library.path != file.pathHere) continue;
            known->second =
                &_missing.emplace_back(manifest.library, [this, &file](const std::string& symbol) {
                    return _survey.Loads().NeededWith(file, symbol);
                });
            return;
        }
    }

    Survey& _survey;
    std::deque<MissingFunctions> _missing;
    std::unordered_map<std::string, MissingFunctions*> _ofPath;
};

/// What a library holds as far as the loader needs it, for one whose sections can't be read.
LibraryFile WithoutSections(const LoaderFile& file) {
    LibraryFile library{file.pathHere, {}, {}, {}, true};
    for (const auto& [name, symbol] : file.object->definitions) library.exports.emplace(name);
    return library;
}

void CheckProgram(Survey& survey, const LibrarySearch& search, Findings& findings) {
    for (const LoadProblem& problem : survey.Loads().ProblemsOfProgram()) {
        findings.AddError({search.Program()->path}, problem.text, problem.kind);
    }
}

}  // namespace

std::vector<Note> OtherLines(const NamedLibrary& library) {
    std::vector<Note> notes;
    for (std::size_t i = 1; i < library.lines.size(); ++i) {
        notes.push_back({library.lines[i].place, "so does \"" + library.lines[i].text + "\""});
    }
    return notes;
}

std::string WrongFile(const NamedLibrary& library, const LibrarySearch& search) {
    const LoaderFile* const file = library.file;
    if (file == nullptr) {
        if (library.foreign == nullptr) return {};
        return Shown(*library.foreign) + " is for " + NameOf(library.foreign->object->processor) +
               ", and one for " + NameOf(*search.Wanted()) + " is wanted";
    }
    const std::string& why = file->object ? file->object->whyNotLoaded : file->whyUnreadable;
    return why.empty() ? std::string() : Shown(*file) + " " + why;
}

std::string WhereNotFound(const NamedLibrary& library, const SearchPlaces& places) {
    std::string tried;
    for (const std::string& name : library.tried) {
        tried.append(tried.empty() ? "" : ", ").append(name);
    }
    return (tried.empty() ? "no file has such a name" : tried) + " in " + PlacesText(places);
}

std::string NearFiles(const NamedLibrary& library, const SearchPlaces& places) {
    std::vector<std::string> names;
    for (const auto* folders : {&places.folders, &places.fromEnvironment}) {
        for (const std::string& folder : *folders) {
            for (std::string& name : FilesIn(places.image.PathHere(folder))) {
                names.push_back(std::move(name));
            }
        }
    }
    std::string text;
    for (const std::string& name : NearNames("lib" + library.name + ".so", names)) {
        text.append(text.empty() ? "" : ", ").append(name);
    }
    return text;
}

std::vector<Manifest> ReadManifests(const std::map<std::string, NamedLibrary>& libraries,
                                    Findings& findings) {
    std::vector<Manifest> manifests;
    std::unordered_set<std::string> met;
    for (const auto& [name, library] : libraries) {
        const LoaderFile* const file = library.file;
        const bool isLibrary =
            file != nullptr && file->object && file->object->whyNotLoaded.empty();
        if (!isLibrary || !met.insert(file->pathHere).second) continue;
        Findings unread;
        std::optional<LibraryFile> read = ReadLibraryFile(file->pathHere, unread);
        Findings ofRecords;
        manifests.push_back(
            ManifestOf(read ? *std::move(read) : WithoutSections(*file), ofRecords));
        // A library whose records are not understood works all the same.
        for (const Finding& finding : ofRecords.All()) {
            findings.AddWarning(finding.place, finding.text, finding.kind);
        }
    }
    return manifests;
}

void CheckLibraries(Survey& survey, const LibrarySearch& search, Findings& findings) {
    CheckProgram(survey, search, findings);
    Causes causes;
    for (const auto& [name, library] : survey.Libraries()) {
        if (AddWrongFile(library, search, findings)) continue;
        for (const LoadProblem& problem : library.problems) causes.Add(problem, library);
    }
    causes.Tell(findings);
    Exports exports(survey);
    RequireEntryPoints(survey.Lines(), [&](const std::string& name) { return exports.Find(name); });
    exports.Tell(findings);
    CheckEntryPointNames(survey.Lines(), findings);
    CheckRecords(survey.Manifests(), survey.Lines(), findings);
}

}  // namespace lyr::inspection
