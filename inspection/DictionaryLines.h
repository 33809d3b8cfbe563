#pragma once

#include "GUID.h"
#include "inspection/Findings.h"

#include <string>
#include <string_view>
#include <vector>

namespace lyr::inspection {

/// A line of a ".dicts" file; `leaf` and `extension` are empty where it has no such keyword.
struct PairLine {
    std::string className;
    std::string interfaceName;
    std::string library;
    std::string leaf;
    std::string extension;
    Place place;

    /// Whether the second word is an interface, and not one of the component model's own.
    bool IsOfInterface() const;

    /// The line as it stands in a file.
    std::string Text() const;
};

/// A line of an ".iidts" file; ids are in capitals and braces.
struct InterfaceLine {
    std::string iid;
    std::string name;
    Place place;

    std::string Text() const;
};

/// A line of a ".clsidts" file; `library` is empty where it names none.
struct ClassLine {
    std::string clsid;
    std::string className;
    std::string library;
    Place place;

    std::string Text() const;
};

/// What dictionary files say, and what the records of libraries make them say.
struct DictionaryLines {
    std::vector<PairLine> pairs;
    std::vector<InterfaceLine> interfaces;
    std::vector<ClassLine> classes;

    void Append(const DictionaryLines& others);
};

/// What a line that the library's reader refuses does to those below: a process reads none of them,
/// whoever wants to know all that is wrong goes on.
enum class BadLine { EndsTheFile, IsLeftOut };

/// What is added to the text of a finding that ends the reading of its file.
inline constexpr const char* kReadingEnds = "; nothing below this line is read";

/// Adds the lines of the file, cut as the library cuts them. A file that cannot be read, one of no
/// kind that is known, and each line that its reader would refuse adds an error; so does an id that
/// the library takes for another.
void ReadDictionaryFile(const std::string& path, BadLine badLine, DictionaryLines& lines,
                        Findings& findings);

/// The id as dictionary files have it, in capitals and braces.
std::string TextOf(const GUID& id);

/// The id in capitals; empty unless it is written {8-4-4-4-12}, in hexadecimal digits.
std::string CanonicalId(std::string_view text);

/// The same for an id as people type it, with braces or without.
std::string IdFromUser(const std::string& text);

}  // namespace lyr::inspection
