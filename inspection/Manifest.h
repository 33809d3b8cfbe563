#pragma once

#include "inspection/DictionaryLines.h"
#include "inspection/LibraryFile.h"

#include <optional>
#include <string>
#include <vector>

namespace lyr::inspection {

/// A class, or an extension, that a library's records declare.
struct DeclaredClass {
    std::string name;
    /// In capitals and braces; empty for a class without one.
    std::string clsid;
    /// The class that it derives from; empty for an extension.
    std::string base;
    bool isExtension = false;
    Place place;
};

/// What a component library says of itself.
struct Manifest {
    LibraryFile library;
    /// As dictionary files name the library.
    std::string libraryName;
    std::vector<DeclaredClass> classes;
    /// What its records make the dictionary files say. Their place is the library's file.
    DictionaryLines lines;
};

/// The class from which a component derives that names no other.
inline const std::string kBaseOfAll = "LYRSysTSBaseUnknown";

/// The name of the function by which LYRSysTSCreateInstance has a library make objects by class id.
inline constexpr const char* kClassObjectFunction = "LYRSysTSDllGetClassObject";

/// Reads the records of the library of that file; there may be none. Nothing, with errors added,
/// when it can't be read, no dictionary could name it, or a record is not understood.
std::optional<Manifest> ReadManifest(const std::string& path, Findings& findings);

/// What the library's records say; for a record that is not understood, an error is added.
Manifest ManifestOf(LibraryFile library, Findings& findings);

}  // namespace lyr::inspection
