#include "inspection/LibrarySearch.h"

#include "inspection/DictionaryFolders.h"

#include <filesystem>
#include <unistd.h>
#include <utility>

namespace lyr::inspection {

namespace {

namespace fs = std::filesystem;

void Replace(std::string& text, std::string_view word, const std::string& value) {
    for (auto at = text.find(word); at != std::string::npos; at = text.find(word, at)) {
        text.replace(at, word.size(), value);
        at += value.size();
    }
}

/// A run path of the old kind, of the file or of one that has led to it.
bool HasOldRunPath(const Requester* requester) {
    for (; requester != nullptr && requester->file != nullptr; requester = requester->before) {
        if (requester->file->object && !requester->file->object->rpath.empty()) return true;
    }
    return false;
}

/// The part of a folder's name that tells processors apart.
const char* TripletOf(const Processor& processor) {
    switch (processor.machine) {
        case EM_X86_64:
            return "x86_64-linux-gnu";
        case EM_AARCH64:
            return "aarch64-linux-gnu";
        case EM_RISCV:
            return "riscv64-linux-gnu";
        case EM_PPC64:
            return "powerpc64le-linux-gnu";
        default:
            return nullptr;
    }
}

/// What this very program is for.
std::optional<Processor> OwnProcessor() {
    try {
        return ElfFile("/proc/self/exe").For();
    } catch (const Unreadable&) {
        return std::nullopt;
    }
}

}  // namespace

LibrarySearch::LibrarySearch(SearchPlaces places)
    : _places(std::move(places)), _cache(_places.image) {
    if (!_places.program.empty()) {
        std::error_code ignored;
        const fs::path real = _places.image.IsThisMachine()
                                  ? fs::canonical(_places.program, ignored)
                                  : fs::path(_places.program);
        _program = &Read(ignored ? _places.program : real.string());
    }
    if (_program != nullptr && _program->object) {
        _wanted = _program->object->processor;
    } else if (_places.image.IsThisMachine()) {
        _wanted = OwnProcessor();
    }
}

const LoaderFile& LibrarySearch::Read(const std::string& path) {
    std::unique_ptr<LoaderFile>& file = _files[path];
    if (file != nullptr) return *file;
    file = std::make_unique<LoaderFile>();
    file->path = path;
    file->pathHere = _places.image.PathHere(path);
    try {
        file->object = ReadSharedObject(file->pathHere);
    } catch (const Unreadable& unreadable) {
        file->whyUnreadable = unreadable.reason;
    }
    return *file;
}

FoundLibrary LibrarySearch::Find(const std::string& name, const Requester& requester) {
    // What others have in their old run paths counts too, so the answer is not that of one file.
    if (HasOldRunPath(requester.before)) return FindAnew(name, requester);
    const auto [place, isNew] = _found.try_emplace({requester.file, name});
    if (isNew) place->second = FindAnew(name, requester);
    return place->second;
}

FoundLibrary LibrarySearch::FindAnew(const std::string& name, const Requester& requester) {
    FoundLibrary found;
    if (name.find('/') != std::string::npos) {
        Try(requester.file != nullptr ? Expand(name, *requester.file) : name, found);
        return found;
    }
    for (const std::string& folder : FoldersFor(requester)) {
        if (Try((fs::path(folder) / name).string(), found)) return found;
    }
    const bool isOnlyNear = requester.file != nullptr && requester.file->object &&
                            requester.file->object->hasNoDefaultFolders;
    if (isOnlyNear) return found;
    for (const std::string& path : _cache.PathsOf(name)) {
        if (Try(path, found)) return found;
    }
    for (const std::string& folder : SystemFolders()) {
        if (Try((fs::path(folder) / name).string(), found)) return found;
    }
    return found;
}

bool LibrarySearch::Try(const std::string& path, FoundLibrary& found) {
    if (::access(_places.image.PathHere(path).c_str(), F_OK) != 0) return false;
    const LoaderFile& file = Read(path);
    if (file.object && !_wanted) _wanted = file.object->processor;
    if (file.object && file.object->processor != *_wanted) {
        if (found.foreign == nullptr) found.foreign = &file;
        return false;
    }
    found.file = &file;
    return true;
}

std::vector<std::string> LibrarySearch::FoldersFor(const Requester& requester) const {
    std::vector<std::string> folders = _places.folders;
    const bool hasNew = requester.file != nullptr && requester.file->object &&
                        !requester.file->object->runpath.empty();
    if (!hasNew) {
        for (const Requester* one = &requester; one != nullptr && one->file != nullptr;
             one = one->before) {
            if (one->file->object) AddRunPath(one->file->object->rpath, *one->file, folders);
        }
        if (_program != nullptr && _program->object) {
            AddRunPath(_program->object->rpath, *_program, folders);
        }
    }
    folders.insert(folders.end(), _places.fromEnvironment.begin(), _places.fromEnvironment.end());
    if (hasNew) AddRunPath(requester.file->object->runpath, *requester.file, folders);
    return folders;
}

void LibrarySearch::AddRunPath(std::string_view runPath, const LoaderFile& owner,
                               std::vector<std::string>& folders) const {
    for (const std::string& folder : SplitPath(runPath)) folders.push_back(Expand(folder, owner));
}

std::string LibrarySearch::Expand(std::string_view text, const LoaderFile& owner) const {
    std::string expanded(text);
    if (expanded.find('$') == std::string::npos) return expanded;
    const std::string origin = fs::absolute(owner.path).parent_path().string();
    const char* const triplet = _wanted ? TripletOf(*_wanted) : nullptr;
    const std::string lib = triplet != nullptr ? std::string("lib/") + triplet : "lib64";
    for (const auto& [word, value] : {std::pair<std::string, std::string>{"ORIGIN", origin},
                                      {"LIB", lib},
                                      {"PLATFORM", "x86_64"}}) {
        Replace(expanded, "${" + word + "}", value);
        Replace(expanded, "$" + word, value);
    }
    return expanded;
}

std::vector<std::string> LibrarySearch::SystemFolders() const {
    std::vector<std::string> folders;
    const char* const triplet = _wanted ? TripletOf(*_wanted) : nullptr;
    for (const std::string& folder : {std::string("/lib"), std::string("/usr/lib")}) {
        if (triplet != nullptr) folders.push_back(folder + "/" + triplet);
    }
    for (const char* folder : {"/lib64", "/usr/lib64", "/lib", "/usr/lib"}) {
        folders.emplace_back(folder);
    }
    return folders;
}

}  // namespace lyr::inspection
