#include "inspection/EntryPoints.h"

#include "inspection/LibraryNames.h"

#include <deque>
#include <map>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace lyr::inspection {

namespace {

/// What some libraries lack, by the names that lines have for these.
class Libraries {
public:
    explicit Libraries(const std::vector<Manifest>& manifests) {
        for (const Manifest& manifest : manifests) _libraries.emplace_back(manifest.library);
    }

    /// Null for a name of none of the libraries.
    MissingFunctions* Find(const std::string& libraryName) {
        const auto [place, isNew] = _found.try_emplace(libraryName, nullptr);
        if (!isNew) return place->second;
        for (MissingFunctions& missing : _libraries) {
            if (missing.AreOf(libraryName)) return place->second = &missing;
        }
        return nullptr;
    }

    void Tell(Findings& findings) const {
        for (const MissingFunctions& missing : _libraries) missing.Tell(findings);
    }

private:
    std::deque<MissingFunctions> _libraries;
    std::unordered_map<std::string, MissingFunctions*> _found;
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

void RequireEntryPoints(const DictionaryLines& lines,
                        const std::function<MissingFunctions*(const std::string&)>& find) {
    std::unordered_set<std::string> interfaces;
    for (const PairLine& line : lines.pairs) interfaces.insert(line.interfaceName);
    for (const PairLine& line : lines.pairs) {
        if (line.interfaceName == "MetaObject") continue;
        MissingFunctions* const missing = find(line.library);
        if (missing == nullptr) continue;
        const EntryPoint entry = EntryPointOf(line);
        const auto namesake = interfaces.find(entry.interfaceName + entry.className);
        missing->Require(entry.Symbol(), WhatFor(line), line.place,
                         namesake != interfaces.end() ? *namesake : std::string());
    }
    for (const ClassLine& line : lines.classes) {
        MissingFunctions* const missing = find(line.library);
        if (missing == nullptr) continue;
        missing->Require(kClassObjectFunction, "making a " + line.className + " by its id",
                         line.place);
    }
}

void CheckEntryPoints(const std::vector<Manifest>& manifests, const DictionaryLines& lines,
                      Findings& findings) {
    Libraries libraries(manifests);
    RequireEntryPoints(lines, [&](const std::string& name) { return libraries.Find(name); });
    libraries.Tell(findings);
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
