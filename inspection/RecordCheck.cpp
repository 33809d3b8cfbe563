#include "inspection/RecordCheck.h"

#include "inspection/Contradictions.h"
#include "inspection/LibraryNames.h"

#include <algorithm>
#include <set>
#include <string>
#include <unordered_map>
#include <utility>

namespace lyr::inspection {

namespace {

/// What records say of extensions.
struct Declared {
    /// Classes and extensions, each with its library.
    std::unordered_map<std::string, const Manifest*> classes;
    std::set<std::string> extensions;
    /// An extension and a class that it lists.
    std::set<std::pair<std::string, std::string>> extends;
};

Declared Collect(const std::vector<Manifest>& manifests) {
    Declared declared;
    for (const Manifest& manifest : manifests) {
        for (const DeclaredClass& one : manifest.classes) {
            declared.classes.try_emplace(one.name, &manifest);
            if (one.isExtension) declared.extensions.insert(one.name);
        }
        for (const PairLine& line : manifest.lines.pairs) {
            if (!line.extension.empty()) declared.extends.emplace(line.extension, line.className);
        }
    }
    return declared;
}

std::string WhyNoAnswer(const PairLine& line, const Declared& declared) {
    if (!declared.classes.contains(line.extension)) return {};
    if (!declared.extensions.contains(line.extension)) {
        return line.extension + " is a class and no extension, so it never answers for " +
               line.className + "; take EXTENDED_BY out, or make it an extension";
    }
    if (declared.extends.contains({line.extension, line.className})) return {};
    return "the extension " + line.extension + " does not extend " + line.className +
           ", so it never answers for it; name the class in its source, or take the line out";
}

void CheckExtensions(const Declared& declared, const DictionaryLines& lines, Findings& findings) {
    for (const PairLine& line : lines.pairs) {
        if (line.extension.empty()) continue;
        const std::string text = WhyNoAnswer(line, declared);
        if (text.empty()) continue;
        const std::string& library = declared.classes.at(line.extension)->library.path;
        findings.AddError(line.place, text, "extension",
                          {{{library}, "its records say what it extends"}});
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
                              "two-ids", {{{manifest.library.path}, "this library"}});
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
    CheckExtensions(Collect(manifests), lines, findings);
    CheckIds(manifests, lines, findings);
    RemarkOnLeaves(lines, findings);
}

}  // namespace lyr::inspection
