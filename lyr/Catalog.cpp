#include "lyr/Catalog.h"

#include "inspection/LibraryNames.h"

#include <algorithm>

namespace lyr::program {

namespace {

std::string FileText(const inspection::NamedLibrary& library) {
    if (library.file != nullptr) return "file " + library.file->path;
    if (library.foreign != nullptr) return "file " + library.foreign->path + ", which is foreign";
    return "no file is found";
}

void AddFact(Entry& entry, const std::string& fact) {
    const bool isKnown =
        std::find(entry.facts.begin(), entry.facts.end(), fact) != entry.facts.end();
    if (!isKnown) entry.facts.push_back(fact);
}

}  // namespace

Catalog::Catalog(const inspection::Survey& survey) {
    for (const auto& line : survey.Lines().pairs) AddPair(line);
    for (const auto& line : survey.Lines().interfaces) {
        Entry& entry = At("interface", line.name);
        AddFact(entry, "id " + line.iid);
        entry.lines.push_back({line.place, line.Text()});
    }
    for (const auto& line : survey.Lines().classes) {
        Entry& entry = At("class", line.className);
        AddFact(entry, "id " + line.clsid);
        entry.lines.push_back({line.place, line.Text()});
    }
    for (const auto& [name, library] : survey.Libraries()) {
        Entry& entry = At("library", "lib" + name);
        AddFact(entry, FileText(library));
        entry.lines = library.lines;
    }
    for (const std::string& file : survey.Files()) At("file", file);
}

Entry& Catalog::At(const std::string& kind, const std::string& name) {
    Entry& entry = _entries[kind][name];
    entry.kind = kind;
    entry.name = name;
    return entry;
}

void Catalog::AddPair(const inspection::PairLine& line) {
    const inspection::Note note{line.place, line.Text()};
    At("class", line.className).lines.push_back(note);
    if (line.IsOfInterface()) At("interface", line.interfaceName).lines.push_back(note);
    if (!line.leaf.empty()) At("interface", line.leaf).lines.push_back(note);
    if (!line.extension.empty()) At("extension", line.extension).lines.push_back(note);
}

std::vector<const Entry*> Catalog::OfKind(const std::string& kind) const {
    std::vector<const Entry*> found;
    const auto entries = _entries.find(kind);
    if (entries == _entries.end()) return found;
    for (const auto& [name, entry] : entries->second) found.push_back(&entry);
    return found;
}

std::vector<const Entry*> Catalog::Find(const std::string& nameOrId) const {
    const std::string id = inspection::IdFromUser(nameOrId);
    const std::string library = "lib" + std::string(inspection::WithoutLib(nameOrId));
    std::vector<const Entry*> found;
    for (const auto& [kind, entries] : _entries) {
        for (const auto& [name, entry] : entries) {
            const auto& facts = entry.facts;
            const bool hasId =
                !id.empty() && std::find(facts.begin(), facts.end(), "id " + id) != facts.end();
            const bool hasName = name == nameOrId || (kind == "library" && name == library);
            if (hasName || hasId) found.push_back(&entry);
        }
    }
    return found;
}

}  // namespace lyr::program
