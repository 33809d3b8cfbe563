#include "inspection/DictionaryLines.h"

#include "LYRSysTSDictionary.h"
#include "LYRSysTSDictionaryReader.h"

#include <cctype>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <span>
#include <unistd.h>

namespace lyr::inspection {

namespace {

using Words = std::span<char* const>;

/// Each takes the words of a line; or says what a line of its kind looks like, when they are none.
std::string TakePair(Words words, const Place& place, DictionaryLines& lines) {
    const bool hasKeyword = words.size() == 5;
    const std::string_view keyword = hasKeyword ? words[3] : "";
    const bool known = !hasKeyword || keyword == "ITFLEAF" || keyword == "EXTENDED_BY";
    if ((words.size() != 3 && !hasKeyword) || !known) {
        return "a line is CLASS INTERFACE LIBRARY, and perhaps ITFLEAF or EXTENDED_BY with a name";
    }
    PairLine line{words[0], words[1], words[2], "", "", place};
    if (hasKeyword) (keyword == "ITFLEAF" ? line.leaf : line.extension) = words[4];
    lines.pairs.push_back(std::move(line));
    return {};
}

std::string TakeInterface(Words words, const Place& place, DictionaryLines& lines) {
    const std::string iid = CanonicalId(words[0]);
    if (words.size() != 2 || iid.empty()) {
        return "a line is ID INTERFACE, the id like {9FF2405A-CFEA-461A-A560-F36C489875AB}";
    }
    lines.interfaces.push_back({iid, words[1], place});
    return {};
}

std::string TakeClass(Words words, const Place& place, DictionaryLines& lines) {
    const std::string clsid = CanonicalId(words[0]);
    if (words.size() < 2 || words.size() > 3 || clsid.empty()) {
        return "a line is ID CLASS LIBRARY, the id like {9FF2405A-CFEA-461A-A560-F36C489875AB}";
    }
    lines.classes.push_back({clsid, words[1], words.size() == 3 ? words[2] : "", place});
    return {};
}

using Take = std::string (*)(Words words, const Place& place, DictionaryLines& lines);

/// In the order in which the library numbers the kinds of files.
constexpr Take kTakers[] = {nullptr, TakePair, TakeInterface, TakeClass};

/// Goes on after a bad line, so that one run tells them all.
class Collector final : public LYRSysTSDictionaryReader {
public:
    Collector(Take take, DictionaryLines& lines, Findings& findings)
        : _take(take), _lines(lines), _findings(findings) {}

    HRESULT PutInfo(char** words, int count, const char* path, int lineNumber) override {
        const Place place{path, lineNumber};
        const std::string wanted = _take({words, static_cast<std::size_t>(count)}, place, _lines);
        if (!wanted.empty()) _findings.AddError(place, wanted, "bad-line");
        return S_OK;
    }

private:
    const Take _take;
    DictionaryLines& _lines;
    Findings& _findings;
};

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

void ReadDictionaryFile(const std::string& path, DictionaryLines& lines, Findings& findings) {
    const int kind = LYRSysTSDictionary::_SelectionByExt(path.c_str());
    if (kind == 0) {
        findings.AddError({path},
                          "is no dictionary file: their names end in .dicts, .iidts or .clsidts",
                          "unreadable");
        return;
    }
    // Told before the library would, in its own words.
    const bool isReadable = ::access(path.c_str(), R_OK) == 0;
    const int error = isReadable ? EISDIR : errno;
    if (!isReadable || std::filesystem::is_directory(path)) {
        findings.AddError({path}, std::string("cannot be read: ") + std::strerror(error),
                          "unreadable");
        return;
    }
    Collector collector(kTakers[kind], lines, findings);
    if (LYRSysTSDictionary::_ReadDictionary(path.c_str(), &collector) != S_OK) {
        findings.AddError({path}, "cannot be read to its end", "unreadable");
    }
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

}  // namespace lyr::inspection
