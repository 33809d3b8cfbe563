#include "inspection/Registration.h"

#include "inspection/LibraryNames.h"
#include "lyr/explain.h"

#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace lyr::inspection {

namespace {

std::vector<Note> FirstSaid(const Place& place) {
    return {{place, "first said here"}};
}

std::string Quoted(const std::string& text) {
    return "\"" + text + "\"";
}

/// Whether lines say two things of one field; one that is left open contradicts nothing.
bool Differ(std::string_view a, std::string_view b) {
    return !a.empty() && !b.empty() && a != b;
}

/// The same record twice is harmless across files of interfaces, which each library brings for all
/// that it uses; anywhere else somebody will change one of the two.
template <typename Line>
void WarnOfRepetition(const Line& line, const Line& first, bool alsoInOtherFiles,
                      Findings& findings) {
    const bool isSameFile = line.place.file == first.place.file;
    if (!isSameFile && !alsoInOtherFiles) return;
    findings.AddWarning(line.place, Quoted(line.Text()) + " is said again; take one of them out",
                        "said-twice", FirstSaid(first.place));
}

/// Takes lines of one kind, file by file, until one of a file is refused.
template <typename Line, typename Take>
void TakeUntilRefused(const std::vector<Line>& lines, std::map<std::string, int>& ends, Take take) {
    for (const Line& line : lines) {
        if (ends.contains(line.place.file)) continue;
        if (!take(line)) ends.emplace(line.place.file, line.place.line);
    }
}

class Pairs {
public:
    Pairs(std::vector<PairLine>& taken, Findings& findings) : _taken(taken), _findings(findings) {}

    void Take(const PairLine& line) {
        const auto [place, isNew] =
            _firstOf.try_emplace({line.className, line.interfaceName}, _taken.size());
        if (isNew) {
            _taken.push_back(line);
            return;
        }
        PairLine& first = _taken[place->second];
        if (WithoutLib(line.library) != WithoutLib(first.library)) {
            Refuse(line, first, "two-libraries");
        } else if (Differ(line.leaf, first.leaf) || Differ(line.extension, first.extension)) {
            Refuse(line, first, "contradiction");
        } else if (line.leaf == first.leaf && line.extension == first.extension) {
            WarnOfRepetition(line, first, true, _findings);
        } else {
            FillIn(line, first);
        }
    }

private:
    using Key = std::pair<std::string_view, std::string_view>;

    void Refuse(const PairLine& line, const PairLine& first, const char* kind) {
        _findings.AddError(line.place,
                           Quoted(line.Text()) + " contradicts " + Quoted(first.Text()) +
                               ", which stays; take one of them out",
                           kind, FirstSaid(first.place));
    }

    void FillIn(const PairLine& line, PairLine& first) {
        _findings.AddWarning(line.place,
                             Quoted(line.Text()) + " and " + Quoted(first.Text()) +
                                 " are taken together; take one of them out",
                             "filled-in", FirstSaid(first.place));
        if (first.leaf.empty()) first.leaf = line.leaf;
        if (first.extension.empty()) first.extension = line.extension;
    }

    std::vector<PairLine>& _taken;
    Findings& _findings;
    std::map<Key, std::size_t> _firstOf;
};

class Interfaces {
public:
    Interfaces(std::vector<InterfaceLine>& taken, Findings& findings)
        : _taken(taken), _findings(findings) {}

    /// False when the line is refused.
    bool Take(const InterfaceLine& line) {
        if (const auto known = _ofName.find(line.name); known != _ofName.end()) {
            const InterfaceLine& first = *known->second;
            if (first.iid == line.iid) {
                WarnOfRepetition(line, first, false, _findings);
                return true;
            }
            return Refuse(line, first,
                          "the interface " + line.name + " has the id " + line.iid +
                              ", but already " + first.iid +
                              "; a changed interface is a new one, with a name of its own",
                          "two-ids");
        }
        if (const auto known = _ofId.find(line.iid); known != _ofId.end()) {
            return Refuse(line, *known->second,
                          "the id " + line.iid + " is that of the interface " + line.name +
                              ", but already of " + known->second->name +
                              "; give one of them an id of its own, from uuidgen",
                          "two-names");
        }
        _ofName.emplace(line.name, &line);
        _ofId.emplace(line.iid, &line);
        _taken.push_back(line);
        return true;
    }

private:
    bool Refuse(const InterfaceLine& line, const InterfaceLine& first, const std::string& text,
                const char* kind) {
        _findings.AddError(line.place, text + kReadingEnds, kind, FirstSaid(first.place));
        return false;
    }

    std::vector<InterfaceLine>& _taken;
    Findings& _findings;
    std::unordered_map<std::string_view, const InterfaceLine*> _ofName;
    std::unordered_map<std::string_view, const InterfaceLine*> _ofId;
};

class Classes {
public:
    Classes(std::vector<ClassLine>& taken, Findings& findings)
        : _taken(taken), _findings(findings) {}

    /// False when the line is refused.
    bool Take(const ClassLine& line) {
        const auto [known, isNew] = _ofId.try_emplace(line.clsid, &line);
        if (isNew) {
            _taken.push_back(line);
            return true;
        }
        const ClassLine& first = *known->second;
        if (line.className != first.className || Differ(line.library, first.library)) {
            _findings.AddError(line.place,
                               Quoted(line.Text()) + " contradicts " + Quoted(first.Text()) +
                                   "; take one of them out" + kReadingEnds,
                               "class-id", FirstSaid(first.place));
            return false;
        }
        if (first.library.empty() && !line.library.empty()) {
            _findings.AddWarning(line.place,
                                 Quoted(line.Text()) +
                                     " comes too late: the class stays without a library; take "
                                     "the other line out",
                                 "late-library", FirstSaid(first.place));
        } else if (first.library == line.library) {
            WarnOfRepetition(line, first, true, _findings);
        }
        return true;
    }

private:
    std::vector<ClassLine>& _taken;
    Findings& _findings;
    std::unordered_map<std::string_view, const ClassLine*> _ofId;
};

std::string NearText(const std::string& name, const std::vector<std::string>& names) {
    std::string text;
    for (const std::string& near : NearNames(name, names)) {
        text.append(text.empty() ? "; there is one of " : ", ").append(near);
    }
    return text;
}

}  // namespace

Registered Register(const DictionaryLines& lines, Findings& findings) {
    Registered registered;
    Pairs pairs(registered.lines.pairs, findings);
    Interfaces interfaces(registered.lines.interfaces, findings);
    Classes classes(registered.lines.classes, findings);
    for (const PairLine& line : lines.pairs) pairs.Take(line);
    TakeUntilRefused(lines.interfaces, registered.ends,
                     [&](const auto& line) { return interfaces.Take(line); });
    TakeUntilRefused(lines.classes, registered.ends,
                     [&](const auto& line) { return classes.Take(line); });
    return registered;
}

void CheckInterfacesHaveIds(const DictionaryLines& registered, Findings& findings) {
    std::unordered_set<std::string> known;
    std::vector<std::string> names;
    for (const InterfaceLine& line : registered.interfaces) {
        known.insert(line.name);
        names.push_back(line.name);
    }
    // Many are no slips of the pen but a missing file, and comparing all names takes long.
    constexpr std::size_t kCompared = 20;
    std::size_t count = 0;
    for (const PairLine& line : registered.pairs) {
        if (!line.IsOfInterface() || !known.insert(line.interfaceName).second) continue;
        findings.AddWarning(line.place,
                            "no file gives the interface " + line.interfaceName +
                                " an id, so only what code registers leads here" +
                                (++count <= kCompared ? NearText(line.interfaceName, names) : ""),
                            "no-id");
    }
}

}  // namespace lyr::inspection
