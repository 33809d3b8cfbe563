#include "inspection/DictionaryFolders.h"

#include "LYRSysTSDictionary.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <filesystem>
#include <unordered_map>

namespace lyr::inspection {

namespace {

/// The names of the folder's dictionary files, as the library lists them.
std::vector<std::string> List(const std::string& folder, Findings& findings) {
    dirent** entries = nullptr;
    const int count =
        ::scandir(folder.c_str(), &entries, LYRSysTSDictionary::_FileSelection, ::alphasort);
    if (count < 0) {
        findings.AddWarning({folder},
                            std::string("the folder of dictionaries is passed over: ") +
                                std::strerror(errno) + "; take it out of the path, or make it",
                            "no-folder");
        return {};
    }
    std::vector<std::string> names;
    for (int i = 0; i < count; ++i) {
        names.emplace_back(entries[i]->d_name);
        std::free(entries[i]);
    }
    std::free(static_cast<void*>(entries));
    return names;
}

/// What tells one folder from another, however it is written.
std::string Identity(const std::string& folder) {
    std::error_code error;
    const auto path = std::filesystem::canonical(folder, error);
    return error ? folder : path.string();
}

}  // namespace

std::vector<std::string> SplitPath(std::string_view path) {
    std::vector<std::string> entries;
    while (!path.empty()) {
        const std::string_view entry = path.substr(0, path.find(':'));
        if (!entry.empty()) entries.emplace_back(entry);
        path.remove_prefix(std::min(path.size(), entry.size() + 1));
    }
    return entries;
}

std::vector<std::string> DictionaryFilesOf(const std::vector<std::string>& folders,
                                           Findings& findings) {
    std::vector<std::string> files;
    std::unordered_map<std::string, std::string> firstOfName;
    std::unordered_map<std::string, std::string> firstOfFolder;
    for (const std::string& folder : folders) {
        const auto [known, isNew] = firstOfFolder.try_emplace(Identity(folder), folder);
        if (!isNew) {
            findings.AddWarning({folder}, "the folder of dictionaries is named twice",
                                "folder-twice", OneNote(known->second, "first named so"));
            continue;
        }
        for (const std::string& name : List(folder, findings)) {
            std::string path = folder;
            path.append("/").append(name);
            const auto [first, isFirst] = firstOfName.try_emplace(name, path);
            if (isFirst) {
                files.push_back(path);
                continue;
            }
            findings.AddWarning({path},
                                "is not read: a file of its name in an earlier folder hides it; "
                                "give one of them another name, unless it is meant",
                                "hidden-file", OneNote(first->second, "this one is read"));
        }
    }
    return files;
}

}  // namespace lyr::inspection
