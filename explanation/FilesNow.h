#pragma once

#include <string>
#include <vector>

namespace lyr::internal {

/// As LYRSysTSDictionary::_SelectionByExt numbers them.
enum class FileKind : int { kPairs = 1, kInterfaces = 2, kClasses = 3 };

/// A line of a dictionary file, as it stands there now.
struct FileLine {
    std::string file;
    int line = 0;
    FileKind kind = FileKind::kPairs;
    std::vector<std::string> words;
    std::string unread;  ///< why the library passes over it, for people; empty when it does not

    std::string Text() const;
};

/// What the folders of dictionary files hold now, read anew and registered nowhere.
struct FilesNow {
    std::vector<FileLine> lines;
    std::size_t folders = 0;
    std::size_t files = 0;
    /// What the library does not read, and why: folders, files, and the rest of files behind a bad
    /// line.
    std::vector<std::string> problems;

    /// All lines. Nothing is said on standard error. Throws std::bad_alloc.
    static FilesNow Read();

    /// A line of the pair, of the name as its second word, or of the id in braces and capitals; one
    /// that is read before one that is not; null for none.
    const FileLine* FindPair(const std::string& className, const std::string& interfaceName) const;
    const FileLine* FindName(FileKind kind, const std::string& name) const;
    const FileLine* FindId(FileKind kind, const std::string& id) const;
};

}  // namespace lyr::internal
