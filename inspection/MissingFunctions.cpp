#include "inspection/MissingFunctions.h"

#include "inspection/LibraryNames.h"
#include "lyr/explain.h"

#include <algorithm>
#include <cstddef>

namespace lyr::inspection {

namespace {

/// The name of a C++ function at global scope, as far as its arguments.
std::string MangledStart(const std::string& symbol) {
    return "_Z" + std::to_string(symbol.size()) + symbol;
}

std::string MangledIn(const LibraryFile& library, const std::string& symbol) {
    const std::string start = MangledStart(symbol);
    std::string mangled;
    for (const auto* names : {&library.exports, &library.inside}) {
        for (const std::string& name : *names) {
            // The first of several, so that one library gives one text.
            const bool isFirst = mangled.empty() || name < mangled;
            if (name.starts_with(start) && isFirst) mangled = name;
        }
    }
    return mangled;
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
        text.append(text.empty() ? "" : ", ").append(prefix).append(rest);
    }
    return text;
}

}  // namespace

bool MissingFunctions::AreOf(std::string_view libraryName) const {
    return LeadsToLibraryFile(libraryName, _library.path);
}

void MissingFunctions::Require(const std::string& symbol, const std::string& what,
                               const Place& place, const std::string& namesake) {
    if (_library.exports.contains(symbol) || !_met.insert(symbol).second) return;
    const Lack lack{what, symbol, place, namesake};
    _lacks[WayOf(lack)].push_back(lack);
}

void MissingFunctions::Tell(Findings& findings) const {
    for (const auto& [way, lacks] : _lacks) {
        std::vector<Note> notes;
        for (std::size_t i = 1; i < lacks.size(); ++i) {
            notes.push_back(
                {lacks[i].place, "so is " + lacks[i].symbol + ", for " + lacks[i].what});
        }
        findings.AddError(lacks[0].place, TextOf(way, lacks[0]), "no-entry-point", notes);
    }
}

MissingFunctions::Way MissingFunctions::WayOf(const Lack& lack) const {
    if (_library.inside.contains(lack.symbol)) {
        return lack.namesake.empty() ? Way::Hidden : Way::HiddenByNamesake;
    }
    if (!MangledIn(_library, lack.symbol).empty()) return Way::Mangled;
    return DependencyWith(lack.symbol) != nullptr ? Way::Elsewhere : Way::Missing;
}

const LoaderFile* MissingFunctions::DependencyWith(const std::string& symbol) const {
    return _inDependency != nullptr ? _inDependency(symbol) : nullptr;
}

std::string MissingFunctions::TextOf(Way way, const Lack& lack) const {
    const std::string start = lack.symbol + ", for " + lack.what + ", is ";
    const std::string base = _library.path.substr(_library.path.rfind('/') + 1);
    const bool isTold = base == _library.path || lack.place.file == _library.path;
    const std::string file = isTold ? base : base + " (" + _library.path + ")";
    switch (way) {
        case Way::HiddenByNamesake:
            return start + "hidden in " + file + ", perhaps because the interface " +
                   lack.namesake +
                   " has that name, which clang keeps inside; give the interface or the class "
                   "another name";
        case Way::Hidden:
            return start + "hidden in " + file +
                   "; have the version script or the visibility let it out";
        case Way::Mangled:
            return start + "not exported by " + file + ", which has " +
                   MangledIn(_library, lack.symbol) + "; declare it extern \"C\"";
        case Way::Elsewhere:
            return start + "missing in " + file + "; " + DependencyWith(lack.symbol)->path +
                   " has it, which " + file +
                   " needs, but only a library's own functions count: "
                   "name that one in the line";
        case Way::Missing:
            break;
    }
    const std::string near = NearIn(_library, lack.symbol);
    if (!near.empty()) {
        return start + "missing in " + file + ", which has " + near +
               "; perhaps a name is not spelled as in the code";
    }
    return start + "missing in " + file + "; perhaps its source is not linked in" +
           (_library.isStripped ? ", or it is hidden, which a stripped library does not tell" : "");
}

}  // namespace lyr::inspection
