#pragma once

#include <string>
#include <vector>

namespace lyr::internal {

/// A line of a dictionary file, as it stands there now.
struct FileLine {
    std::string file;
    int line = 0;
    int kind = 0;  ///< as LYRSysTSDictionary::_SelectionByExt numbers them
    std::vector<std::string> words;
    std::string
        unread;  ///< why the library passes over it: "..." for people; empty when it does not

    std::string Text() const;
};

/// What the folders of dictionary files hold now, read anew and registered nowhere.
struct FilesNow {
    std::vector<FileLine> lines;
    std::size_t folders = 0;
    std::size_t files = 0;
    std::vector<std::string> missingFolders;

    /// All lines. Nothing is said on standard error. Throws std::bad_alloc.
    static FilesNow Read();

    /// The line of the kind that begins with the words, one that is read before one that is not;
    /// null for none.
    const FileLine* Find(int kind, const std::string& first, const std::string& second) const;
};

}  // namespace lyr::internal
