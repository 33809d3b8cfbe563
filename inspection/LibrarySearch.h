#pragma once

#include "inspection/Image.h"
#include "inspection/LoaderCache.h"
#include "inspection/SharedObject.h"

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace lyr::inspection {

/// A file that the loader would open.
struct LoaderFile {
    /// As the loader knows it; where it lies for us is `object->path`, or `pathHere`.
    std::string path;
    std::string pathHere;
    /// None for what cannot be read as a library or program; `whyUnreadable` says why.
    std::optional<SharedObject> object;
    std::string whyUnreadable;
};

/// Who asks for a library: a file that needs it, and who asked for that file; null for a dlopen
/// that is made in libLYRSysTS.
struct Requester {
    const LoaderFile* file = nullptr;
    const Requester* before = nullptr;
};

/// What the loader finds under a name.
struct FoundLibrary {
    /// Null when there is none.
    const LoaderFile* file = nullptr;
    /// One that it has passed over since it is for another processor; null for none.
    const LoaderFile* foreign = nullptr;
};

/// Where libraries are looked for.
struct SearchPlaces {
    /// Looked into before all others.
    std::vector<std::string> folders;
    /// As LD_LIBRARY_PATH has them.
    std::vector<std::string> fromEnvironment;
    /// The program that asks; empty when it is not known.
    std::string program;
    Image image;
};

/// Finds the files that the system's loader finds, without loading them. Each file is read once.
class LibrarySearch {
public:
    explicit LibrarySearch(SearchPlaces places);

    /// The library of that name, as a file needs it or as dlopen is called with it.
    FoundLibrary Find(const std::string& name, const Requester& requester);

    /// The file of that path. Owned by the search, like all others.
    const LoaderFile& Read(const std::string& path);

    /// The folders that are searched before the system's on behalf of libLYRSysTS.
    std::vector<std::string> FoldersOfProcess() const { return FoldersFor({}); }

    /// The program that asks; null when none is named.
    const LoaderFile* Program() const { return _program; }

    /// What libraries are to be for; none as long as nothing has been read that tells it.
    const std::optional<Processor>& Wanted() const { return _wanted; }

    const SearchPlaces& Places() const { return _places; }

private:
    std::vector<std::string> FoldersFor(const Requester& requester) const;
    void AddRunPath(std::string_view runPath, const LoaderFile& owner,
                    std::vector<std::string>& folders) const;
    std::vector<std::string> SystemFolders() const;
    std::string Expand(std::string_view text, const LoaderFile& owner) const;
    /// Whether the search ends with this file, if it is there.
    bool Try(const std::string& path, FoundLibrary& found);
    FoundLibrary FindAnew(const std::string& name, const Requester& requester);

    SearchPlaces _places;
    LoaderCache _cache;
    std::optional<Processor> _wanted;
    std::unordered_map<std::string, std::unique_ptr<LoaderFile>> _files;
    std::map<std::pair<const LoaderFile*, std::string>, FoundLibrary> _found;
    const LoaderFile* _program = nullptr;
};

}  // namespace lyr::inspection
