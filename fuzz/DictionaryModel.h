#pragma once

#include <algorithm>
#include <array>
#include <cstdlib>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

/// Ends the program unless `holds`; the stack that the sanitizer then shows says what did not.
[[gnu::noinline]] inline void Require(bool holds) {
    if (!holds) std::abort();
}

using Text = std::optional<std::string>;

inline int DigitOf(char c) {
    const auto at = std::string("0123456789abcdefABCDEF").find(c);
    return at == std::string::npos ? 0 : static_cast<int>(at < 16 ? at : at - 6);
}

/// The 16 bytes that the text of an id stands for, as they lie in memory; none when it is not 38
/// characters between braces.
inline Text ReadId(const std::string& text) {
    if (text.size() != 38 || text.front() != '{' || text.back() != '}') return std::nullopt;
    std::string id;
    constexpr std::size_t kDigits[] = {7, 5, 3, 1, 12, 10, 17, 15, 20, 22, 25, 27, 29, 31, 33, 35};
    for (const std::size_t at : kDigits) {
        id += static_cast<char>(16 * DigitOf(text[at]) + DigitOf(text[at + 1]));
    }
    return id;
}

/// What the dictionary holds after a scan, worked out from the rules alone: this shares no code
/// with the library, and none of its ways.
/// {"entry", class, interface} -> library, ITFLEAF, EXTENDED_BY; {"iid", id} -> name;
/// {"interface", name} -> id; {"class", id} -> name, library.
using Facts = std::map<std::vector<std::string>, std::array<Text, 3>>;
using Words = std::vector<std::string>;

inline const std::string kConflict = "Problem allocating structure dico\n";

inline Words WordsOf(const std::string& piece) {
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

/// Whether two statements about one thing, which may each be missing, do not contradict.
inline bool Agree(const Text& a, const Text& b) {
    return !a || !b || a == b;
}

// One for each kind of file: what is said about a line, which ends the reading of its file when it
// is anything but nothing and kConflict.

inline std::string TakeEntry(Facts& facts, const Words& words, const std::string& where) {
    const bool isLeaf = words.size() == 5 && words[3] == "ITFLEAF";
    const bool isExtension = words.size() == 5 && words[3] == "EXTENDED_BY";
    if (words.size() != 3 && !isLeaf && !isExtension) return "Problem reading dico : " + where;
    auto& known = facts[{"entry", words[0], words[1]}];
    auto given = known;
    given[0] = words[2].substr(words[2].starts_with("lib") ? 3 : 0);
    if (words.size() == 5) given[isLeaf ? 1 : 2] = words[4];
    if (!std::ranges::equal(known, given, Agree)) return kConflict;
    known = given;
    return "";
}

inline std::string TakeInterface(Facts& facts, const Words& words, const std::string& where) {
    if (words.size() != 2) return "Error in IId dictionary " + where;
    const std::string error = "Error in dictionary " + where;
    const Text id = ReadId(words[0]);
    if (!id) return error + "Invalid iid :" + words[0] + "\n\n";
    const Words byId{"iid", *id}, byName{"interface", words[1]};
    if (!facts.contains(byId) && !facts.contains(byName)) {
        facts[byName] = {id};
        facts[byId] = {words[1]};
    }
    const Text known = facts.contains(byId) ? facts[byId][0] : std::nullopt;
    if (known == words[1]) return "";
    return error + "Can not add interface '" + words[0] + " " + words[1] + "'\n" +
           (known ? "The iid is already defined with interface name '" + *known +
                        "'\nCheck dictionaries.\n\n"
                  : "The interface name is already defined with another iid\n");
}

inline std::string TakeClass(Facts& facts, const Words& words, const std::string& where) {
    const auto count = words.size();
    if (count != 2 && count != 3) return "Problem reading dico name " + where;
    const Text id = ReadId(words[0]), library = count == 3 ? Text(words[2]) : std::nullopt;
    if (!id) return "Problem converting CLSID in " + where;
    const auto& known = facts.insert({{"class", *id}, {words[1], library}}).first->second;
    if (known[0] == words[1] && Agree(known[1], library)) return "";
    return "Error in dictionary " + where + "Can not add class '" + words[1] + " " + words[0] +
           " " + library.value_or("(null)") + "'\n";
}

inline std::string ReadText(Facts& facts, const std::string& path, const std::string& text,
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

/// The text of each file by its name, which is like "0/name"; none for a link, which leads nowhere
/// in directory 0 and elsewhere to a directory.
using Files = std::map<std::string, Text>;

/// Reads the files of the directories of `root`, in their order. What is said about them.
inline std::string ReadFiles(Facts& facts, const std::string& root, const Files& files) {
    const std::map<std::string, decltype(TakeEntry)*> kinds = {
        {".dicts", TakeEntry}, {".iidts", TakeInterface}, {".clsidts", TakeClass}};
    const std::string failures[] = {"fgets(): Is a directory\n",
                                    "fopen(): No such file or directory\n"};
    std::string messages;
    std::set<std::string> met;
    for (const auto& [path, text] : files) {
        const std::string name = path.substr(2), &failure = failures[path[0] == '0' ? 1 : 0];
        const auto dot = std::min(name.rfind('.'), name.size());
        const auto kind = kinds.find(name.substr(dot));
        if (dot == 0 || kind == kinds.end() || !met.insert(name).second) continue;
        messages +=
            text ? ReadText(facts, root + path, *text, kind->second)
                 : "Error : " + failure.substr(0, 5) + " on " + root + path + "\n--> " + failure;
    }
    return messages;
}
