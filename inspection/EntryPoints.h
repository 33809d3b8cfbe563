#pragma once

#include "inspection/Manifest.h"
#include "inspection/MissingFunctions.h"

#include <functional>
#include <string>
#include <vector>

namespace lyr::inspection {

/// The two names that an entry point's name is put together of, and what stands before them.
struct EntryPoint {
    std::string prefix;
    std::string interfaceName;
    std::string className;

    std::string Symbol() const { return prefix + interfaceName + className; }
};

/// The function that is called for the line.
EntryPoint EntryPointOf(const PairLine& line);

/// Notes which functions the lines lead to and their libraries do not export. `find` gives what is
/// missing of the library that lines name so; null for one that is not looked at.
void RequireEntryPoints(const DictionaryLines& lines,
                        const std::function<MissingFunctions*(const std::string&)>& find);

/// Adds an error for each way in which entry points are not exported by the libraries that `lines`
/// name, as far as these are among `manifests`: hidden, C++ names, not there at all.
void CheckEntryPoints(const std::vector<Manifest>& manifests, const DictionaryLines& lines,
                      Findings& findings);

/// Adds an error for each two pairs of names that give one entry point of one library.
void CheckEntryPointNames(const DictionaryLines& lines, Findings& findings);

}  // namespace lyr::inspection
