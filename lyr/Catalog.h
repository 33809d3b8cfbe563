#pragma once

#include "inspection/Survey.h"

#include <map>
#include <string>
#include <vector>

namespace lyr::program {

/// What is known of one class, interface, library or file.
struct Entry {
    /// "class", "extension", "interface", "library" or "file".
    std::string kind;
    std::string name;
    /// The ids and the file that belong to it.
    std::vector<std::string> facts;
    /// The lines that name it.
    std::vector<inspection::Note> lines;
};

/// All that folders of dictionaries speak of, by kind and name.
class Catalog {
public:
    explicit Catalog(const inspection::Survey& survey);

    /// All of that kind, in the order of their names.
    std::vector<const Entry*> OfKind(const std::string& kind) const;

    /// All that have the name or the id, which is taken in small letters and without braces too; a
    /// library also by its name with "lib".
    std::vector<const Entry*> Find(const std::string& nameOrId) const;

private:
    Entry& At(const std::string& kind, const std::string& name);
    void AddPair(const inspection::PairLine& line);

    std::map<std::string, std::map<std::string, Entry>> _entries;
};

}  // namespace lyr::program
