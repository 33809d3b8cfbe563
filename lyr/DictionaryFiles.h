#pragma once

#include "inspection/DictionaryLines.h"

#include <string>

namespace lyr::program {

/// The three dictionary files NAME.dicts, NAME.iidts and NAME.clsidts in a folder.
class DictionaryFiles {
public:
    DictionaryFiles(std::string folder, std::string name)
        : _folder(std::move(folder)), _name(std::move(name)) {}

    /// Writes the lines, each once and in order, behind a comment with the library's name. Makes
    /// the folder where it is missing. Each file is there as a whole or not at all; with an error
    /// added, none is.
    void Write(const inspection::DictionaryLines& lines, const std::string& libraryName,
               inspection::Findings& findings) const;

    /// Takes away what an earlier run wrote.
    void Remove() const;

private:
    std::string PathOf(const char* extension) const;

    std::string _folder;
    std::string _name;
};

}  // namespace lyr::program
