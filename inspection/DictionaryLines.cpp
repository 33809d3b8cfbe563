#include "inspection/DictionaryLines.h"

#include "LYRSysTSConvertStringToGUID.h"
#include "LYRSysTSDictionary.h"
#include "LYRSysTSDictionaryReader.h"

#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <span>
#include <sys/stat.h>
#include <unistd.h>

namespace lyr::inspection {

namespace {

using Words = std::span<char* const>;

/// Where the words of a line go to.
struct Target {
    const Place& place;
    DictionaryLines& lines;
    Findings& findings;
};

/// Each takes the words of a line; or says what a line of its kind looks like, when they are none.
std::string TakePair(Words words, const Target& target) {
    const bool hasKeyword = words.size() == 5;
    const std::string_view keyword = hasKeyword ? words[3] : "";
    const bool known = !hasKeyword || keyword == "ITFLEAF" || keyword == "EXTENDED_BY";
    if ((words.size() != 3 && !hasKeyword) || !known) {
        return "a line is CLASS INTERFACE LIBRARY, and perhaps ITFLEAF or EXTENDED_BY with a name";
    }
    PairLine line{words[0], words[1], words[2], "", "", target.place};
    if (hasKeyword) (keyword == "ITFLEAF" ? line.leaf : line.extension) = words[4];
    target.lines.pairs.push_back(std::move(line));
    return {};
}

/// The id that the library makes of the text, in capitals; empty for what it refuses. Adds an error
/// when it makes another one of it than anybody means.
std::string TakeId(const char* text, const Target& target) {
    GUID id;
    if (LYRSysTSConvertStringToGUID(text, id) != 0) return {};
    std::string taken = TextOf(id);
    if (CanonicalId(text).empty()) {
        target.findings.AddError(target.place,
                                 std::string("the id ") + text +
                                     " has characters that are no hexadecimal digits, and is "
                                     "taken for " +
                                     taken + "; copy the id from the interface or class",
                                 "bad-id");
    }
    return taken;
}

std::string TakeInterface(Words words, const Target& target) {
    constexpr const char* kForm =
        "a line is ID INTERFACE, the id like {9FF2405A-CFEA-461A-A560-F36C489875AB}";
    if (words.size() != 2) return kForm;
    const std::string iid = TakeId(words[0], target);
    if (iid.empty()) return kForm;
    target.lines.interfaces.push_back({iid, words[1], target.place});
    return {};
}

std::string TakeClass(Words words, const Target& target) {
    constexpr const char* kForm =
        "a line is ID CLASS LIBRARY, the id like {9FF2405A-CFEA-461A-A560-F36C489875AB}";
    if (words.size() < 2 || words.size() > 3) return kForm;
    const std::string clsid = TakeId(words[0], target);
    if (clsid.empty()) return kForm;
    target.lines.classes.push_back(
        {clsid, words[1], words.size() == 3 ? words[2] : "", target.place});
    return {};
}

using Take = std::string (*)(Words words, const Target& target);

/// In the order in which the library numbers the kinds of files.
constexpr Take kTakers[] = {nullptr, TakePair, TakeInterface, TakeClass};

class Collector final : public LYRSysTSDictionaryReader {
public:
    Collector(Take take, BadLine badLine, DictionaryLines& lines, Findings& findings)
        : _take(take), _badLine(badLine), _lines(lines), _findings(findings) {}

    HRESULT PutInfo(char** words, int count, const char* path, int lineNumber) override {
        const Place place{path, lineNumber};
        const std::string wanted =
            _take({words, static_cast<std::size_t>(count)}, {place, _lines, _findings});
        if (wanted.empty()) return S_OK;
        _hasEnded = _badLine == BadLine::EndsTheFile;
        _findings.AddError(place, _hasEnded ? wanted + kReadingEnds : wanted, "bad-line");
        return _hasEnded ? E_FAIL : S_OK;
    }

    bool HasEnded() const { return _hasEnded; }

private:
    const Take _take;
    const BadLine _badLine;
    DictionaryLines& _lines;
    Findings& _findings;
    bool _hasEnded = false;
};

/// Why the file cannot be read, in the system's words, told before the library would; empty when it
/// can. A pipe or a device would be waited for.
std::string WhyUnreadable(const std::string& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0 || ::access(path.c_str(), R_OK) != 0) {
        return std::strerror(errno);
    }
    if (S_ISDIR(status.st_mode)) return std::strerror(EISDIR);
    return S_ISREG(status.st_mode) ? "" : "is no regular file";
}

}  // namespace

bool PairLine::IsOfInterface() const {
    return interfaceName != "CreateInterface" && interfaceName != "MetaObject";
}

std::string PairLine::Text() const {
    std::string text = className + " " + interfaceName + " " + library;
    if (!leaf.empty()) text += " ITFLEAF " + leaf;
    if (!extension.empty()) text += " EXTENDED_BY " + extension;
    return text;
}

std::string InterfaceLine::Text() const {
    return iid + " " + name;
}

std::string ClassLine::Text() const {
    const std::string text = clsid + " " + className;
    return library.empty() ? text : text + " " + library;
}

void DictionaryLines::Append(const DictionaryLines& others) {
    pairs.insert(pairs.end(), others.pairs.begin(), others.pairs.end());
    interfaces.insert(interfaces.end(), others.interfaces.begin(), others.interfaces.end());
    classes.insert(classes.end(), others.classes.begin(), others.classes.end());
}

void ReadDictionaryFile(const std::string& path, BadLine badLine, DictionaryLines& lines,
                        Findings& findings) {
    const int kind = LYRSysTSDictionary::_SelectionByExt(path.c_str());
    if (kind == 0) {
        findings.AddError({path},
                          "is no dictionary file: their names end in .dicts, .iidts or .clsidts",
                          "unreadable");
        return;
    }
    const std::string reason = WhyUnreadable(path);
    if (!reason.empty()) {
        findings.AddError({path}, "cannot be read: " + reason, "unreadable");
        return;
    }
    Collector collector(kTakers[kind], badLine, lines, findings);
    const bool isRead = LYRSysTSDictionary::_ReadDictionary(path.c_str(), &collector) == S_OK;
    if (!isRead && !collector.HasEnded()) {
        findings.AddError({path}, "cannot be read to its end", "unreadable");
    }
}

std::string TextOf(const GUID& id) {
    char text[39];
    const auto& end = id.Data4;
    std::snprintf(text, sizeof text, "{%08X-%04X-%04X-%02X%02X-%02X%02X%02X%02X%02X%02X}",
                  static_cast<unsigned>(id.Data1), id.Data2, id.Data3, end[0], end[1], end[2],
                  end[3], end[4], end[5], end[6], end[7]);
    return text;
}

std::string CanonicalId(std::string_view text) {
    constexpr std::string_view kForm = "{00000000-0000-0000-0000-000000000000}";
    if (text.size() != kForm.size()) return {};
    std::string id;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto c = static_cast<unsigned char>(text[i]);
        if (kForm[i] == '0' ? std::isxdigit(c) == 0 : text[i] != kForm[i]) return {};
        id.push_back(static_cast<char>(std::toupper(c)));
    }
    return id;
}

std::string IdFromUser(const std::string& text) {
    return CanonicalId(text.starts_with("{") ? text : "{" + text + "}");
}

}  // namespace lyr::inspection
