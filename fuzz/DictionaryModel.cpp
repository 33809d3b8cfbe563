#include "DictionaryModel.h"

#include <algorithm>
#include <set>

namespace {

using Words = std::vector<std::string>;

const std::string kConflict = "Problem allocating structure dico\n";

int DigitOf(char c) {
    const auto at = std::string("0123456789abcdefABCDEF").find(c);
    return at == std::string::npos ? 0 : static_cast<int>(at < 16 ? at : at - 6);
}

Words WordsOf(const std::string& piece) {
    constexpr auto kSeparators = " \t\n";
    Words words;
    if (piece.starts_with("#") || piece.starts_with("//")) return words;
    for (auto at = piece.find_first_not_of(kSeparators); at < piece.size() && words.size() < 5;) {
        const auto end = piece.find_first_of(kSeparators, at);
        words.push_back(piece.substr(at, end - at));
        at = piece.find_first_not_of(kSeparators, end);
    }
    return words;
}

// One for each kind of file: what is said about a line, which ends the reading of its file when it
// is anything but nothing and kConflict.

std::string TakeEntry(Facts& facts, const Words& words, const std::string& where) {
    const bool isLeaf = words.size() == 5 && words[3] == "ITFLEAF";
    const bool isExtension = words.size() == 5 && words[3] == "EXTENDED_BY";
    if (words.size() != 3 && !isLeaf && !isExtension) return "Problem reading dico : " + where;
    Fields given{words[2].substr(words[2].starts_with("lib") ? 3 : 0)};
    if (words.size() == 5) given[isLeaf ? 1 : 2] = words[4];
    Fields& known = facts[{"entry", words[0], words[1]}];
    Fields merged = known;
    for (std::size_t i = 0; i < given.size(); ++i) {
        if (!merged[i]) merged[i] = given[i];
        if (given[i] && merged[i] != given[i]) return kConflict;
    }
    known = merged;
    return "";
}

std::string TakeInterface(Facts& facts, const Words& words, const std::string& where) {
    if (words.size() != 2) return "Error in IId dictionary " + where;
    const std::string error = "Error in dictionary " + where;
    const Text id = ReadId(words[0]);
    if (!id) return error + "Invalid iid :" + words[0] + "\n\n";

    Fields &name = facts[{"iid", *id}], &other = facts[{"interface", words[1]}];
    if (!name[0] && !other[0]) name[0] = words[1], other[0] = id;
    if (name[0] == words[1]) return "";
    const Text known = name[0];
    if (!name[0]) facts.erase({"iid", *id});
    if (!other[0]) facts.erase({"interface", words[1]});
    return error + "Can not add interface '" + words[0] + " " + words[1] + "'\n" +
           (known ? "The iid is already defined with interface name '" + *known +
                        "'\nCheck dictionaries.\n\n"
                  : "The interface name is already defined with another iid\n");
}

std::string TakeClass(Facts& facts, const Words& words, const std::string& where) {
    const auto count = words.size();
    if (count != 2 && count != 3) return "Problem reading dico name " + where;
    const Text id = ReadId(words[0]), library = count == 3 ? Text(words[2]) : std::nullopt;
    if (!id) return "Problem converting CLSID in " + where;

    const Fields& known =
        facts.try_emplace({"class", *id}, Fields{words[1], library}).first->second;
    const bool agrees = !known[1] || !library || known[1] == library;
    if (known[0] == words[1] && agrees) return "";
    return "Error in dictionary " + where + "Can not add class '" + words[1] + " " + words[0] +
           " " + library.value_or("(null)") + "'\n";
}

std::string ReadFile(Facts& facts, const std::string& path, const std::string& text,
                     decltype(TakeEntry)* take) {
    std::string messages;
    int line = 0;
    for (std::size_t at = 0, end = 0; at < text.size(); at = end) {
        // A piece of 2047 bytes at most, of which all behind a zero byte is lost.
        end = std::min({text.find('\n', at), at + 2046, text.size() - 1}) + 1;
        const Words words = WordsOf(text.substr(at, std::min(end, text.find('\0', at)) - at));
        const std::string where = path + " line " + std::to_string(++line) + "\n";
        const std::string said = words.empty() ? "" : take(facts, words, where);
        messages += said;
        if (!said.empty() && said != kConflict) break;
    }
    return messages;
}

}  // namespace

Text ReadId(const std::string& text) {
    if (text.size() != 38 || text.front() != '{' || text.back() != '}') return std::nullopt;
    constexpr std::size_t kDigits[] = {7, 5, 3, 1, 12, 10, 17, 15, 20, 22, 25, 27, 29, 31, 33, 35};
    std::string id;
    for (const std::size_t at : kDigits) {
        id += static_cast<char>(16 * DigitOf(text[at]) + DigitOf(text[at + 1]));
    }
    return id;
}

void DictionaryModel::Scan(const std::vector<std::pair<std::string, const Directory*>>& path) {
    const std::map<std::string, decltype(TakeEntry)*> kinds = {
        {".dicts", TakeEntry}, {".iidts", TakeInterface}, {".clsidts", TakeClass}};
    const char* const failures[] = {"", "fopen", "fgets"};
    const char* const reasons[] = {"", "No such file or directory", "Is a directory"};
    std::set<std::string> met;
    messages.clear();
    for (const auto& [place, directory] : path) {
        for (const auto& [name, file] : *directory) {
            const auto dot = std::min(name.rfind('.'), name.size());
            const auto kind = kinds.find(name.substr(dot));
            if (dot == 0 || kind == kinds.end() || !met.insert(name).second) continue;
            const std::string filePath = place + "/" + name, failure = failures[file.kind];
            if (file.kind == File::kPlain) {
                messages += ReadFile(facts, filePath, file.text, kind->second);
            } else {
                messages += "Error : " + failure + " on " + filePath + "\n--> " + failure +
                            "(): " + reasons[file.kind] + "\n";
            }
        }
    }
}
