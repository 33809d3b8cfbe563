#pragma once

#include "inspection/DictionaryLines.h"
#include "inspection/Findings.h"
#include "inspection/LibrarySearch.h"
#include "inspection/LoadCheck.h"
#include "inspection/Manifest.h"

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace lyr::inspection {

/// A library that lines name, and what was found under its name.
struct NamedLibrary {
    /// As lines have it, without a leading "lib".
    std::string name;
    /// Lines that name it, in their order, and what they say.
    std::vector<Note> lines;
    /// Null when no file was found.
    const LoaderFile* file = nullptr;
    const LoaderFile* foreign = nullptr;
    /// The names under which it was looked for.
    std::vector<std::string> tried;
    std::vector<LoadProblem> problems;
};

/// All that can be known of folders of dictionaries and the libraries that they lead to, without
/// loading any of these.
class Survey {
public:
    /// Reads all of it. `folders` are those of the dictionaries, as the image's programs know them.
    Survey(const std::vector<std::string>& folders, SearchPlaces places);

    /// The dictionary files that are read, in their order.
    const std::vector<std::string>& Files() const { return _files; }
    /// What a process has registered when it has read them.
    const DictionaryLines& Lines() const { return _lines; }
    /// By their names without "lib".
    const std::map<std::string, NamedLibrary>& Libraries() const { return _libraries; }
    /// What the libraries that could be read say of themselves.
    const std::vector<Manifest>& Manifests() const { return _manifests; }
    /// What is wrong or surprises in all of this.
    Findings& Found() { return _findings; }

    LoadCheck& Loads() { return *_loads; }
    const LibrarySearch& Search() const { return *_search; }

private:
    void ReadFiles(const std::vector<std::string>& folders);
    void NameLibraries();
    void Locate(NamedLibrary& library);

    SearchPlaces _places;
    Findings _findings;
    std::vector<std::string> _files;
    DictionaryLines _lines;
    std::unique_ptr<LibrarySearch> _search;
    std::unique_ptr<LoadCheck> _loads;
    std::map<std::string, NamedLibrary> _libraries;
    std::vector<Manifest> _manifests;
};

}  // namespace lyr::inspection
