#pragma once

#include "Names.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace bench {

/// Component libraries with their dictionary files, as start_files makes them in a directory. All
/// names and ids follow from the numbers and the prefix.
struct StartSet {
    static constexpr std::size_t kInterfaces = 10;  ///< of a class; those of a library share them
    static constexpr std::size_t kLibrariesOfADirectory = 30;

    std::filesystem::path directory;
    std::size_t libraries = 0;
    std::size_t entryPoints = 0;  ///< of a library, one for each interface of each class
    std::string prefix;           ///< of all names

    /// The set that is in a directory.
    static StartSet In(const std::filesystem::path& directory) {
        StartSet set;
        set.directory = directory;
        std::ifstream shape(set.ShapeFile());
        shape >> set.libraries >> set.entryPoints >> set.prefix;
        if (set.Entries() == 0) {
            std::fprintf(stderr, "no libraries in %s\n", directory.c_str());
            std::exit(1);
        }
        return set;
    }
    std::filesystem::path ShapeFile() const { return directory / "shape"; }
    std::filesystem::path LibraryDirectory() const { return directory / "libraries"; }

    /// The directories of the dictionary files, between colons.
    std::string DictionaryPath() const {
        std::string path;
        for (std::size_t i = 0; i < libraries; i += kLibrariesOfADirectory) {
            if (i != 0) path += ':';
            path += DictionaryDirectory(i).string();
        }
        return path;
    }
    std::filesystem::path DictionaryDirectory(std::size_t library) const {
        return directory / "dictionaries" / std::to_string(library / kLibrariesOfADirectory);
    }

    std::size_t ClassesOfALibrary() const { return (entryPoints + kInterfaces - 1) / kInterfaces; }
    std::size_t Classes() const { return libraries * ClassesOfALibrary(); }
    std::size_t Interfaces() const { return libraries * kInterfaces; }
    std::size_t Entries() const { return libraries * entryPoints; }

    std::string LibraryName(std::size_t number) const { return Name(number, 3, "lib" + prefix); }
    std::string ClassName(std::size_t number) const { return Name(number, 4, prefix); }
    std::string InterfaceName(std::size_t number) const { return Name(number, 3, "I" + prefix); }

    /// How the ".clsidts" files write the library of a class: every other time without "lib", which
    /// there is not taken off and makes a difference.
    std::string LibraryOfClass(std::size_t number) const {
        return LibraryName(number / ClassesOfALibrary()).substr(WritesLib(number) ? 0 : 3);
    }
    static bool WritesLib(std::size_t classNumber) { return classNumber % 2 == 0; }

    /// The ids of the interfaces and, behind them, of the classes.
    std::vector<GUID> Ids() const {
        std::seed_seq seed(prefix.begin(), prefix.end());
        return RandomIds(Interfaces() + Classes(), std::mt19937(seed));
    }
};

/// One of the entries of a set: the numbers of its class, interface and library, and which of the
/// library's entry points it has.
struct StartEntry {
    StartEntry(const StartSet& set, std::size_t number)
        : library(number / set.entryPoints),
          entryPoint(number % set.entryPoints),
          classNumber(library * set.ClassesOfALibrary() + entryPoint / StartSet::kInterfaces),
          interfaceNumber(library * StartSet::kInterfaces + entryPoint % StartSet::kInterfaces) {}

    std::string Symbol(const StartSet& set) const {
        return "LYRSysTSCreate" + set.InterfaceName(interfaceNumber) + set.ClassName(classNumber);
    }

    std::size_t library;
    std::size_t entryPoint;
    std::size_t classNumber;
    std::size_t interfaceNumber;
};

}  // namespace bench
