#include "inspection/Contradictions.h"

#include "inspection/LibraryNames.h"

#include <map>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace lyr::inspection {

namespace {

/// Names and where each was met first.
using Places = std::unordered_map<std::string, Place>;
using Names = std::unordered_set<std::string>;

Note FirstSaid(const Place& place) {
    return {place, "first said here"};
}

Places ClassesOf(const std::vector<Manifest>& manifests, const DictionaryLines& lines) {
    Places classes;
    for (const Manifest& manifest : manifests) {
        for (const DeclaredClass& declared : manifest.classes) {
            classes.try_emplace(declared.name, declared.place);
        }
    }
    for (const PairLine& line : lines.pairs) {
        classes.try_emplace(line.className, line.place);
        if (!line.extension.empty()) classes.try_emplace(line.extension, line.place);
    }
    for (const ClassLine& line : lines.classes) classes.try_emplace(line.className, line.place);
    return classes;
}

Places InterfacesOf(const DictionaryLines& lines) {
    Places interfaces;
    for (const InterfaceLine& line : lines.interfaces)
        interfaces.try_emplace(line.name, line.place);
    for (const PairLine& line : lines.pairs) {
        if (line.IsOfInterface()) interfaces.try_emplace(line.interfaceName, line.place);
        if (!line.leaf.empty()) interfaces.try_emplace(line.leaf, line.place);
    }
    return interfaces;
}

void CheckKinds(const Places& classes, const Places& interfaces, Findings& findings) {
    // In the order of the names, so that one input gives one text.
    for (const auto& [name, place] : std::map(interfaces.begin(), interfaces.end())) {
        if (name == "CreateInterface" || name == "MetaObject") {
            findings.AddError(place,
                              name +
                                  " is a word of the component model's own; give the interface "
                                  "another name",
                              "reserved-name");
        }
        const auto other = classes.find(name);
        if (other == classes.end()) continue;
        findings.AddError(place,
                          name +
                              " is named as an interface, but is a class; name the interface "
                              "that is meant, or give one of them another name",
                          "class-as-interface", {{other->second, "it is a class here"}});
    }
}

void CheckPairs(const DictionaryLines& lines, const Names& told, Findings& findings) {
    std::map<std::pair<std::string_view, std::string_view>, const PairLine*> firstOf;
    for (const PairLine& line : lines.pairs) {
        if (told.contains(line.className)) continue;
        const auto [place, isFirst] =
            firstOf.try_emplace({line.className, line.interfaceName}, &line);
        const PairLine& first = *place->second;
        const bool isSame = WithoutLib(line.library) == WithoutLib(first.library) &&
                            line.leaf == first.leaf && line.extension == first.extension;
        if (isFirst || isSame) continue;
        findings.AddError(line.place,
                          std::string("\"") + line.Text() + "\" contradicts \"" + first.Text() +
                              "\"; a class has an interface in one way, take one of them out",
                          "contradiction", {FirstSaid(first.place)});
    }
}

void CheckInterfaceIds(const DictionaryLines& lines, Findings& findings) {
    std::unordered_map<std::string_view, const InterfaceLine*> firstOfName;
    std::unordered_map<std::string_view, const InterfaceLine*> firstOfId;
    std::set<std::pair<std::string_view, std::string_view>> met;
    for (const InterfaceLine& line : lines.interfaces) {
        if (!met.emplace(line.name, line.iid).second) continue;
        const InterfaceLine& ofName = *firstOfName.try_emplace(line.name, &line).first->second;
        const InterfaceLine& ofId = *firstOfId.try_emplace(line.iid, &line).first->second;
        if (ofName.iid != line.iid) {
            findings.AddError(line.place,
                              "the interface " + line.name + " has the id " + line.iid +
                                  ", but already " + ofName.iid +
                                  "; a changed interface is a new one, with a name of its own",
                              "two-ids", {FirstSaid(ofName.place)});
        } else if (ofId.name != line.name) {
            findings.AddError(line.place,
                              "the id " + line.iid + " is that of the interface " + line.name +
                                  ", but already of " + ofId.name +
                                  "; give one of them an id of its own, from uuidgen",
                              "two-names", {FirstSaid(ofId.place)});
        }
    }
}

/// What is wrong when both lines stand in one program; empty for nothing.
std::string Contradiction(const ClassLine& line, const ClassLine& first) {
    if (line.className != first.className) {
        return "the id " + line.clsid + " is that of the class " + line.className +
               ", but already of " + first.className +
               "; give one of them an id of its own, from uuidgen";
    }
    if (line.clsid != first.clsid) {
        return "the class " + line.className + " has the id " + line.clsid + ", but already " +
               first.clsid + "; take one of them out";
    }
    if (line.library == first.library) return {};
    return std::string("\"") + line.Text() + "\" contradicts \"" + first.Text() +
           "\"; take one of them out";
}

void CheckClassIds(const DictionaryLines& lines, const Names& told, Findings& findings) {
    std::unordered_map<std::string_view, const ClassLine*> firstOfId;
    std::unordered_map<std::string_view, const ClassLine*> firstOfName;
    for (const ClassLine& line : lines.classes) {
        if (told.contains(line.className)) continue;
        const ClassLine* const ofId = firstOfId.try_emplace(line.clsid, &line).first->second;
        const ClassLine* const ofName =
            firstOfName.try_emplace(line.className, &line).first->second;
        const ClassLine* const first = ofId != &line ? ofId : ofName;
        const std::string text = Contradiction(line, *first);
        if (text.empty()) continue;
        findings.AddError(line.place, text, "class-id", {FirstSaid(first->place)});
    }
}

}  // namespace

std::unordered_set<std::string> CheckDeclaredClasses(const std::vector<Manifest>& manifests,
                                                     Findings& findings) {
    Places firstOf;
    Names twice;
    for (const Manifest& manifest : manifests) {
        for (const DeclaredClass& declared : manifest.classes) {
            const auto [first, isFirst] = firstOf.try_emplace(declared.name, declared.place);
            if (isFirst || !twice.insert(declared.name).second) continue;
            findings.AddError(declared.place,
                              "two classes are named " + declared.name +
                                  "; give one of them another name, which is unique in a program",
                              "two-classes", {{first->second, "the other is declared here"}});
        }
    }
    return twice;
}

void CheckContradictions(const std::vector<Manifest>& manifests, const DictionaryLines& lines,
                         Findings& findings) {
    const Names told = CheckDeclaredClasses(manifests, findings);
    CheckKinds(ClassesOf(manifests, lines), InterfacesOf(lines), findings);
    CheckPairs(lines, told, findings);
    CheckInterfaceIds(lines, findings);
    CheckClassIds(lines, told, findings);
}

}  // namespace lyr::inspection
