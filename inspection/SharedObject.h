#pragma once

#include "inspection/ElfFile.h"

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace lyr::inspection {

/// A symbol as the loader compares it; `version` is empty for one without.
struct VersionedSymbol {
    std::string_view name;
    std::string_view version;
    /// Whether it stands only for those who ask for this version.
    bool isHidden = false;
};

/// What a file wants of a library that it needs.
struct NeededVersion {
    std::string_view library;
    std::string_view version;
    bool isWeak = false;
};

/// What the dynamic loader sees of a shared library or a program: what its segments lead to, not
/// its sections, which it can do without.
struct SharedObject {
    std::string path;
    Processor processor;
    /// Why dlopen takes no such file; empty when it does.
    std::string whyNotLoaded;
    std::string_view soname;
    std::vector<std::string_view> needed;
    /// The run path of the old kind; empty beside one of the new kind, which replaces it.
    std::string_view rpath;
    std::string_view runpath;
    bool hasNoDefaultFolders = false;

    bool hasVersions = false;
    std::vector<std::string_view> versions;
    std::vector<NeededVersion> neededVersions;
    std::unordered_multimap<std::string_view, VersionedSymbol> definitions;
    /// Those that must be found for it to load.
    std::vector<VersionedSymbol> undefined;

    /// What all the texts above are parts of.
    std::shared_ptr<const std::string> texts;

    /// Whether what it defines is what the other file's undefined symbol stands for.
    bool Provides(const VersionedSymbol& wanted) const;
    bool DefinesVersion(std::string_view version) const;
};

/// Throws Unreadable for what is no such file, or is cut short.
SharedObject ReadSharedObject(const std::string& path);

}  // namespace lyr::inspection
