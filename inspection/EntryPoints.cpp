#include "inspection/EntryPoints.h"

#include "inspection/LibraryNames.h"

#include <algorithm>
#include <map>
#include <optional>
#include <tuple>
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

class Checker {
public:
    explicit Checker(const LibraryFile& library) : _library(library) {}

    void Require(const std::string& symbol, const std::string& what, const Place& place) {
        if (_library.exports.contains(symbol)) return;
        _lacks[WayOf(symbol)].push_back({what, symbol, place});
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
        return start + "missing in " + file +
               "; perhaps its source is not linked in, or a name is not spelled as in the code";
    }

    const LibraryFile& _library;
    std::map<Way, std::vector<Lack>> _lacks;
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
    for (const Manifest& manifest : manifests) {
        const LibraryFile& library = manifest.library;
        Checker checker(library);
        for (const PairLine& line : lines.pairs) {
            if (line.interfaceName == "MetaObject") continue;
            if (!LeadsToLibraryFile(line.library, library.path)) continue;
            checker.Require(EntryPointOf(line).Symbol(), WhatFor(line), line.place);
        }
        for (const ClassLine& line : lines.classes) {
            if (!LeadsToLibraryFile(line.library, library.path)) continue;
            checker.Require(kClassObjectFunction, "making a " + line.className + " by its id",
                            line.place);
        }
        checker.Tell(findings);
    }
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
