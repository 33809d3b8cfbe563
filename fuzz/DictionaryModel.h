#pragma once

#include <array>
#include <cstdlib>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

/// Ends the program unless `holds`; the stack that the sanitizer then shows says what did not.
[[gnu::noinline]] inline void Require(bool holds) {
    if (!holds) std::abort();
}

using Text = std::optional<std::string>;

/// The 16 bytes that the text of an id stands for, as they lie in memory; none when it is not 38
/// characters between braces.
Text ReadId(const std::string& text);

/// What a directory holds, by name; only a plain file has a text.
struct File {
    enum Kind { kPlain, kDanglingLink, kDirectory } kind = kPlain;
    std::string text;
};
using Directory = std::map<std::string, File>;

/// What the dictionary holds and what has been said after a scan, worked out from the rules alone:
/// it shares no code with the library, and none of its ways. The facts:
/// {"entry", class, interface} -> library, ITFLEAF, EXTENDED_BY; {"iid", id} -> name;
/// {"interface", name} -> id; {"class", id} -> name, library.
using Fields = std::array<Text, 3>;
using Facts = std::map<std::vector<std::string>, Fields>;
struct DictionaryModel {
    Facts facts;
    std::string messages;

    /// Reads the directories of a path in their order.
    void Scan(const std::vector<std::pair<std::string, const Directory*>>& path);
};
