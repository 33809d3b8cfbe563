#include "inspection/EntryPoints.h"

#include "inspection/LibraryNames.h"
#include "inspection/NearNames.h"

#include <algorithm>
#include <deque>
#include <map>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace lyr::inspection {

namespace {

/// A function that a library lacks, and what for.
struct Lack {
    std::string what;
    std::string symbol;
    Place place;
};

/// Ways to lack a function, and what helps.
enum class Way { Hidden, Mangled, Missing };

/// The name of a C++ function at global scope, as far as its arguments.
std::string MangledStart(const std::string& symbol) {
    return "_Z" + std::to_string(symbol.size()) + symbol;
}

std::string MangledIn(const LibraryFile& library, const std::string& symbol) {
    const std::string start = MangledStart(symbol);
    for (const auto* names : {&library.exports, &library.inside}) {
        const auto found = std::find_if(names->begin(), names->end(), [&](const std::string& name) {
            return name.starts_with(start);
        });
        if (found != names->end()) return *found;
    }
    return {};
}

/// Exported functions of the same purpose with names like this one.
std::string NearIn(const LibraryFile& library, const std::string& symbol) {
    constexpr std::string_view kStem = "LYRSysTSCreate";
    const std::size_t stem = symbol.find(kStem);
    if (stem == std::string::npos) return {};
    const std::string prefix = symbol.substr(0, stem + kStem.size());
    std::vector<std::string> rests;
    for (const std::string& name : library.exports) {
        if (name.starts_with(prefix)) rests.push_back(name.substr(prefix.size()));
    }
    std::string text;
    for (const std::string& rest : NearNames(symbol.substr(prefix.size()), rests)) {
        text += (text.empty() ? "" : ", ") + prefix + rest;
    }
    return text;
}

class Checker {
public:
    explicit Checker(const LibraryFile& library) : _library(library) {}

    void Require(const std::string& symbol, const std::string& what, const Place& place) {
        if (_library.exports.contains(symbol) || !_met.insert(symbol).second) return;
        _lacks[WayOf(symbol)].push_back({what, symbol, place});
    }

    bool IsOf(std::string_view libraryName) const {
        return LeadsToLibraryFile(libraryName, _library.path);
    }

    /// One error for each way, however many functions: mostly they have one cause.
    void Tell(Findings& findings) const {
        constexpr std::size_t kShown = 3;
        for (const auto& [way, lacks] : _lacks) {
            std::vector<Note> notes;
            for (std::size_t i = 1; i < std::min(kShown, lacks.size()); ++i) {
                notes.push_back(
                    {lacks[i].place, "so is " + lacks[i].symbol + ", for " + lacks[i].what});
            }
            if (lacks.size() > kShown) {
                notes.push_back(
                    {{_library.path}, "and " + std::to_string(lacks.size() - kShown) + " more"});
            }
            findings.AddError(lacks[0].place, TextOf(way, lacks[0]), "no-entry-point", notes);
        }
    }

private:
    Way WayOf(const std::string& symbol) const {
        if (_library.inside.contains(symbol)) return Way::Hidden;
        return MangledIn(_library, symbol).empty() ? Way::Missing : Way::Mangled;
    }

    std::string TextOf(Way way, const Lack& lack) const {
        const std::string start = lack.symbol + ", for " + lack.what + ", is ";
        const std::string file = _library.path.substr(_library.path.rfind('/') + 1);
        switch (way) {
            case Way::Hidden:
                return start + "hidden in " + file +
                       "; have the version script or the visibility let it out";
            case Way::Mangled:
                return start + "not exported by " + file + ", which has " +
                       MangledIn(_library, lack.symbol) + "; declare it extern \"C\"";
            case Way::Missing:
                break;
        }
        const std::string near = NearIn(_library, lack.symbol);
        if (!near.empty()) {
            return start + "missing in " + file + ", which has " + near +
                   "; perhaps a name is not spelled as in the code";
        }
        return start + "missing in " + file + "; perhaps its source is not linked in";
    }

    const LibraryFile& _library;
    std::map<Way, std::vector<Lack>> _lacks;
    std::unordered_set<std::string> _met;
};

/// The checkers of some libraries, by the names that lines have for these.
class Checkers {
public:
    explicit Checkers(const std::vector<Manifest>& manifests) {
        for (const Manifest& manifest : manifests) _checkers.emplace_back(manifest.library);
    }

    /// Null for a name of none of the libraries.
    Checker* Find(const std::string& libraryName) {
        const auto [place, isNew] = _found.try_emplace(libraryName, nullptr);
        if (!isNew) return place->second;
        for (Checker& checker : _checkers) {
            if (checker.IsOf(libraryName)) return place->second = &checker;
        }
        return nullptr;
    }

    void Tell(Findings& findings) const {
        for (const Checker& checker : _checkers) checker.Tell(findings);
    }

private:
    std::deque<Checker> _checkers;
    std::unordered_map<std::string, Checker*> _found;
};

std::string WhatFor(const PairLine& line) {
    if (line.interfaceName == "CreateInterface") return "making a " + line.className;
    return line.interfaceName + " of " + line.className;
}

}  // namespace

EntryPoint EntryPointOf(const PairLine& line) {
    if (line.interfaceName == "CreateInterface") {
        return {"fctLYRSysTSCreate", "", line.className};
    }
    return {"LYRSysTSCreate", line.leaf.empty() ? line.interfaceName : line.leaf,
            line.extension.empty() ? line.className : line.extension};
}

void CheckEntryPoints(const std::vector<Manifest>& manifests, const DictionaryLines& lines,
                      Findings& findings) {
    Checkers checkers(manifests);
    for (const PairLine& line : lines.pairs) {
        Checker* const checker = checkers.Find(line.library);
        if (checker == nullptr || line.interfaceName == "MetaObject") continue;
        checker->Require(EntryPointOf(line).Symbol(), WhatFor(line), line.place);
    }
    for (const ClassLine& line : lines.classes) {
        Checker* const checker = checkers.Find(line.library);
        if (checker == nullptr) continue;
        checker->Require(kClassObjectFunction, "making a " + line.className + " by its id",
                         line.place);
    }
    checkers.Tell(findings);
}

void CheckEntryPointNames(const DictionaryLines& lines, Findings& findings) {
    using Key = std::pair<std::string, std::string>;
    std::map<Key, std::pair<EntryPoint, const PairLine*>> firstOf;
    for (const PairLine& line : lines.pairs) {
        const EntryPoint entry = EntryPointOf(line);
        const Key key(WithoutLib(line.library), entry.Symbol());
        const auto [place, isFirst] = firstOf.try_emplace(key, entry, &line);
        const auto& [first, firstLine] = place->second;
        if (isFirst || first.className == entry.className) continue;
        findings.AddError(line.place,
                          WhatFor(line) + " and " + WhatFor(*firstLine) +
                              " have one entry point, " + entry.Symbol() +
                              "; give one of the four another name",
                          "ambiguous-names", {{firstLine->place, "the other is named here"}});
    }
}

}  // namespace lyr::inspection
