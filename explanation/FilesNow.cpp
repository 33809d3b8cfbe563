#include "explanation/FilesNow.h"

#include "LYRSysTSConvertStringToGUID.h"
#include "LYRSysTSDicoIIDName.h"
#include "LYRSysTSDictionary.h"
#include "LYRSysTSDictionaryReader.h"
#include "dictionary/DictionaryScan.h"

#include <cstdlib>
#include <dirent.h>
#include <map>
#include <sys/stat.h>
#include <unistd.h>

namespace lyr::internal {

namespace {

enum Kind : int { kPairs = 1, kInterfaces = 2, kClasses = 3 };

/// Why the library's reader refuses the line; null for a good one.
const char* Fault(int kind, char* const* words, int count) {
    if (kind == kPairs) {
        if (count < 3) return "has less than three words";
        return count == 4 ? "has four words" : nullptr;
    }
    if (count < 2 || (kind == kInterfaces && count != 2) || count > 3) {
        return "has another number of words than two";
    }
    GUID id;
    if (LYRSysTSConvertStringToGUID(words[0], id) != 0) return "does not begin with an id";
    if (kind != kInterfaces) return nullptr;
    const GUID* const known = LYRSysTSDicoIIDName::QueryDicoIIDNameByName(words[1]);
    return known != nullptr && *known != id ? "gives the name another id" : nullptr;
}

/// Collects lines. The library reads no line behind one that is bad.
class Collector final : public LYRSysTSDictionaryReader {
public:
    Collector(int kind, std::string unread, std::vector<FileLine>& lines)
        : _kind(kind), _unread(std::move(unread)), _lines(lines) {}

    HRESULT PutInfo(char** words, int count, const char* path, int lineNumber) override {
        const char* const fault = Fault(_kind, words, count);
        if (fault != nullptr && _unread.empty()) {
            _unread = "line " + std::to_string(lineNumber) + " " + fault + ", where reading ends";
        }
        FileLine line{path, lineNumber, _kind, {}, _unread};
        for (int i = 0; i < count; ++i) line.words.emplace_back(words[i]);
        _lines.push_back(std::move(line));
        return S_OK;
    }

private:
    const int _kind;
    std::string _unread;
    std::vector<FileLine>& _lines;
};

std::vector<std::string> FilesOf(const std::string& folder, bool& isThere) {
    dirent** entries = nullptr;
    const int count =
        ::scandir(folder.c_str(), &entries, LYRSysTSDictionary::_FileSelection, ::alphasort);
    isThere = count >= 0;
    std::vector<std::string> names;
    for (int i = 0; i < count; ++i) {
        names.emplace_back(entries[i]->d_name);
        std::free(entries[i]);
    }
    std::free(entries);
    return names;
}

/// Whether the file can be read; the library would say why not, and has, when it read them all.
bool IsReadable(const std::string& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 && !S_ISDIR(status.st_mode) &&
           ::access(path.c_str(), R_OK) == 0;
}

}  // namespace

std::string FileLine::Text() const {
    std::string text;
    for (const std::string& word : words) text += (text.empty() ? "" : " ") + word;
    return text;
}

FilesNow FilesNow::Read() {
    FilesNow now;
    std::map<std::string, std::string> met;  // by name, the path of the first
    for (const std::string& folder : DictionaryFolders()) {
        bool isThere = false;
        const std::vector<std::string> names = FilesOf(folder, isThere);
        ++now.folders;
        if (!isThere) now.missingFolders.push_back(folder);
        for (const std::string& name : names) {
            const std::string path = folder + "/" + name;
            const auto [first, isFirst] = met.emplace(name, path);
            if (!IsReadable(path)) continue;
            ++now.files;
            const int kind = LYRSysTSDictionary::_SelectionByExt(name.c_str());
            Collector collector(kind, isFirst ? "" : first->second + " hides this file", now.lines);
            static_cast<void>(LYRSysTSDictionary::_ReadDictionary(path.c_str(), &collector));
        }
    }
    return now;
}

const FileLine* FilesNow::Find(int kind, const std::string& first,
                               const std::string& second) const {
    const FileLine* unread = nullptr;
    for (const FileLine& line : lines) {
        if (line.kind != kind || line.words.size() < 2) continue;
        if (line.words[0] != first || line.words[1] != second) continue;
        if (line.unread.empty()) return &line;
        if (unread == nullptr) unread = &line;
    }
    return unread;
}

}  // namespace lyr::internal
