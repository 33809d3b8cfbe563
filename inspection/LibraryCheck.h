#pragma once

#include "inspection/Survey.h"

#include <map>
#include <string>
#include <vector>

namespace lyr::inspection {

/// The records of the libraries that were found. Adds errors for records that are not understood.
std::vector<Manifest> ReadManifests(const std::map<std::string, NamedLibrary>& libraries,
                                    Findings& findings);

/// The lines of a library behind the first, where findings of it stand, as their notes.
std::vector<Note> OtherLines(const NamedLibrary& library);

/// What is wrong with the file that was found, whatever it needs: it is none that is loaded, or is
/// for another processor. Empty for nothing, also when none was found.
std::string WrongFile(const NamedLibrary& library, const LibrarySearch& search);

/// For a library that was not found: the names that were tried, and where.
std::string WhereNotFound(const NamedLibrary& library, const SearchPlaces& places);

/// Files with names like the library's, in the folders that somebody has named; empty for none.
std::string NearFiles(const NamedLibrary& library, const SearchPlaces& places);

/// Adds what keeps the lines' libraries from being found, loaded and asked: one finding for each
/// cause, with the lines that it hits.
void CheckLibraries(Survey& survey, const LibrarySearch& search, Findings& findings);

}  // namespace lyr::inspection
