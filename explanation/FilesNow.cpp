#include "explanation/FilesNow.h"

#include "LYRSysTSConvertStringToGUID.h"
#include "LYRSysTSDicoIIDName.h"
#include "LYRSysTSDictionary.h"
#include "LYRSysTSDictionaryReader.h"
#include "dictionary/DictionaryScan.h"
#include "dictionary/PairLine.h"
#include "explanation/ExplainedSearch.h"
#include "registries/ClassRecord.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <map>
#include <sys/stat.h>
#include <unistd.h>

namespace lyr::internal {

namespace {

/// Why the library's reader refuses the line; null for a good one.
const char* Fault(FileKind kind, char* const* words, int count) {
    if (kind == FileKind::kPairs) {
        const char* leaf = nullptr;
        const char* extension = nullptr;
        if (ReadPairLine(words, count, leaf, extension)) return nullptr;
        return count < 3 ? "has less than three words"
                         : "has more behind its third word than ITFLEAF or EXTENDED_BY with a name";
    }
    const bool isOfInterface = kind == FileKind::kInterfaces;
    if (count < 2 || count > (isOfInterface ? 2 : 3)) {
        return isOfInterface ? "has not two words" : "has neither two words nor three";
    }
    GUID id;
    if (LYRSysTSConvertStringToGUID(words[0], id) != 0) return "does not begin with an id";
    if (!isOfInterface) {
        const CLSIDNameRecord* const known = KnownClass(id);
        const bool isOther = known != nullptr && std::strcmp(known->className, words[1]) != 0;
        return isOther ? "gives the id another class" : nullptr;
    }
    const GUID* const known = LYRSysTSDicoIIDName::QueryDicoIIDNameByName(words[1]);
    if (known != nullptr && *known != id) return "gives the name another id";
    const char* const name = LYRSysTSDicoIIDName::QueryDicoIIDNameByIID(id);
    return name != nullptr && std::strcmp(name, words[1]) != 0 ? "gives the id another name"
                                                               : nullptr;
}

/// Collects lines. The library reads no line behind one that is bad.
class Collector final : public LYRSysTSDictionaryReader {
public:
    Collector(FileKind kind, std::string unread, FilesNow& now)
        : _kind(kind), _unread(std::move(unread)), _now(now) {}

    HRESULT PutInfo(char** words, int count, const char* path, int lineNumber) override {
        const char* const fault = Fault(_kind, words, count);
        if (fault != nullptr && _unread.empty()) {
            _unread = "line " + std::to_string(lineNumber) + " " + fault + ", and ends the reading";
            _now.problems.push_back(std::string(path) + ":" + std::to_string(lineNumber) + "  " +
                                    fault + ": nothing of the file counts from there on");
        }
        FileLine line{path, lineNumber, _kind, {}, _unread};
        for (int i = 0; i < count; ++i) line.words.emplace_back(words[i]);
        _now.lines.push_back(std::move(line));
        return S_OK;
    }

private:
    const FileKind _kind;
    std::string _unread;
    FilesNow& _now;
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

/// Why the file cannot be read; null when it can. The library has said so, when it read them all.
const char* WhyUnreadable(const std::string& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) return std::strerror(errno);
    if (S_ISDIR(status.st_mode)) return std::strerror(EISDIR);
    return ::access(path.c_str(), R_OK) != 0 ? std::strerror(errno) : nullptr;
}

/// The line that fits, one that is read before one that is not.
template <typename Fits>
const FileLine* FindLine(const std::vector<FileLine>& lines, FileKind kind, Fits fits) {
    const FileLine* unread = nullptr;
    for (const FileLine& line : lines) {
        if (line.kind != kind || line.words.size() < 2 || !fits(line.words)) continue;
        if (line.unread.empty()) return &line;
        if (unread == nullptr) unread = &line;
    }
    return unread;
}

using Words = std::vector<std::string>;

}  // namespace

std::string FileLine::Text() const {
    std::string text;
    for (const std::string& word : words) text.append(text.empty() ? "" : " ").append(word);
    return text;
}

FilesNow FilesNow::Read() {
    FilesNow now;
    std::map<std::string, std::string> met;  // by name, the path of the first
    for (const std::string& folder : DictionaryFolders()) {
        bool isThere = false;
        const std::vector<std::string> names = FilesOf(folder, isThere);
        ++now.folders;
        if (!isThere) now.problems.push_back(folder + "  there is no such folder");
        for (const std::string& name : names) {
            std::string path = folder;
            path.append("/").append(name);
            const auto [first, isFirst] = met.emplace(name, path);
            if (const char* const why = WhyUnreadable(path)) {
                now.problems.push_back(path + "  ");
                now.problems.back() += why;
                continue;
            }
            ++now.files;
            const auto kind =
                static_cast<FileKind>(LYRSysTSDictionary::_SelectionByExt(name.c_str()));
            Collector collector(kind, isFirst ? "" : first->second + " hides this file", now);
            static_cast<void>(LYRSysTSDictionary::_ReadDictionary(path.c_str(), &collector));
        }
    }
    return now;
}

const FileLine* FilesNow::FindPair(const std::string& className,
                                   const std::string& interfaceName) const {
    return FindLine(lines, FileKind::kPairs, [&](const Words& words) {
        return words[0] == className && words[1] == interfaceName;
    });
}

const FileLine* FilesNow::FindName(FileKind kind, const std::string& name) const {
    return FindLine(lines, kind, [&](const Words& words) { return words[1] == name; });
}

const FileLine* FilesNow::FindId(FileKind kind, const std::string& id) const {
    return FindLine(lines, kind, [&](const Words& words) {
        GUID written;
        return LYRSysTSConvertStringToGUID(words[0].data(), written) == 0 &&
               InBraces(written) == id;
    });
}

}  // namespace lyr::internal
