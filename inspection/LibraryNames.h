#pragma once

#include <string>
#include <string_view>

namespace lyr::inspection {

/// How dictionary files name the library of that file: "libGreeter" for "build/libGreeter.so", and
/// the whole file name for "libGreeter.so.2" and for one that does not begin with "lib". Empty for
/// a file that no library name leads to, such as one without ".so" or with a blank.
std::string NameOfLibraryFile(std::string_view path);

/// Whether the library `name` of a dictionary file leads to the library of that file, wherever it
/// lies.
bool LeadsToLibraryFile(std::string_view name, std::string_view path);

/// The name as the dictionary keeps it, without a leading "lib".
std::string_view WithoutLib(std::string_view name);

}  // namespace lyr::inspection
