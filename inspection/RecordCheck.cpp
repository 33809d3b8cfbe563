#include "inspection/RecordCheck.h"

#include "inspection/Contradictions.h"
#include "inspection/Declarations.h"

#include <algorithm>
#include <set>
#include <string>
#include <unordered_map>
#include <utility>

namespace lyr::inspection {

namespace {

void CheckExtensions(const Declarations& declared, const DictionaryLines& lines,
                     Findings& findings) {
    for (const PairLine& line : lines.pairs) {
        if (line.extension.empty()) continue;
        const std::string text = declared.WhyNotExtended(line);
        if (text.empty()) continue;
        findings.AddError(
            line.place, text, "extension",
            {{declared.Find(line.extension)->place, "its records say what it extends"}});
    }
}

void CheckIds(const std::vector<Manifest>& manifests, const DictionaryLines& lines,
              Findings& findings) {
    std::unordered_map<std::string, const InterfaceLine*> said;
    for (const InterfaceLine& line : lines.interfaces) said.emplace(line.name, &line);
    for (const Manifest& manifest : manifests) {
        std::set<std::string> told;
        for (const InterfaceLine& built : manifest.lines.interfaces) {
            const auto found = said.find(built.name);
            if (found == said.end() || found->second->iid == built.iid) continue;
            if (!told.insert(built.name).second) continue;
            findings.AddError(found->second->place,
                              "the interface " + built.name + " has the id " + found->second->iid +
                                  " here, but a library was built with " + built.iid +
                                  "; make the dictionary files of that library again",
                              "two-ids", OneNote(manifest.library.path, "this library"));
        }
    }
}

/// A leaf's derivation is in code alone.
void RemarkOnLeaves(const DictionaryLines& lines, Findings& findings) {
    std::vector<Note> places;
    for (const PairLine& line : lines.pairs) {
        if (!line.leaf.empty()) places.push_back({line.place, "so here: " + line.Text()});
    }
    if (places.empty()) return;
    const Place first = places.front().place;
    places.erase(places.begin());
    findings.AddRemark(first,
                       "whether a leaf interface is derived from the other, and has its "
                       "meta-object in time, shows only when the program runs",
                       "leaf", places);
}

}  // namespace

void CheckRecords(const std::vector<Manifest>& manifests, const DictionaryLines& lines,
                  Findings& findings) {
    CheckDeclaredClasses(manifests, findings);
    CheckExtensions(Declarations(manifests), lines, findings);
    CheckIds(manifests, lines, findings);
    RemarkOnLeaves(lines, findings);
}

}  // namespace lyr::inspection
