#include "LibraryFiles.h"

#include <cstdio>
#include <cstring>
#include <iterator>

namespace lyr::internal {

namespace {

struct Name {
    bool isPath;
    bool beginsWithLib;
    bool holdsSo;
};

/// One way to make a file of a name: where it applies, and what stands before and behind the base.
struct Form {
    bool (*applies)(const Name& name);
    const char* prefix;
    const char* suffix;
};

constexpr Form kForms[] = {
    {[](const Name& name) { return name.isPath; }, "", ""},
    {[](const Name&) { return true; }, "lib", ".so"},
    {[](const Name& name) { return name.beginsWithLib; }, "", ".so"},
    {[](const Name& name) { return name.holdsSo && !name.isPath; }, "", ""},
    // The whole name of a file that a dictionary has taken the leading "lib" of.
    {[](const Name& name) { return name.holdsSo && !name.isPath && !name.beginsWithLib; }, "lib",
     ""},
};

const char* BaseOf(const char* name) {
    const char* const slash = std::strrchr(name, '/');
    return slash != nullptr ? slash + 1 : name;
}

}  // namespace

LibraryFiles::LibraryFiles(const char* name, const char* folder)
    : _name(name), _folder(folder), _base(BaseOf(name)) {}

const char* LibraryFiles::Next() {
    const auto directory = static_cast<int>(_base - _name);
    const Name name{directory != 0, std::strncmp(_base, "lib", 3) == 0,
                    std::strstr(_base, ".so") != nullptr};
    if (name.isPath && _folder != nullptr) return nullptr;
    const char* const folder = _folder != nullptr ? _folder : "";
    const char* const slash = _folder != nullptr ? "/" : "";
    while (_next < static_cast<int>(std::size(kForms))) {
        const Form& form = kForms[_next++];
        if (!form.applies(name)) continue;
        const int length = std::snprintf(_file, sizeof _file, "%s%s%.*s%s%s%s", folder, slash,
                                         directory, _name, form.prefix, _base, form.suffix);
        if (length >= 0 && length < kFileSize) return _file;
    }
    return nullptr;
}

}  // namespace lyr::internal
