#include "inspection/RequestRoad.h"

#include "LYRSysTSKnownIds.h"
#include "inspection/EntryPoints.h"
#include "inspection/LibraryCheck.h"
#include "inspection/LibraryNames.h"
#include "inspection/NearPairs.h"

#include <algorithm>
#include <set>
#include <utility>

namespace lyr::inspection {

namespace {

constexpr const char* kCreation = "CreateInterface";
constexpr const char* kIUnknown = "IUnknown";

// How much a reason tells: what hinders a line tells more than that a class has none.
constexpr int kAbsence = 1;
constexpr int kInterface = 2;
constexpr int kLine = 3;

/// Texts of findings end with what to do, behind a semicolon, or with what is perhaps the reason.
std::pair<std::string, std::string> SplitRemedy(const std::string& text) {
    const std::size_t semicolon = text.find("; ");
    const bool hasRemedy =
        semicolon != std::string::npos && text.compare(semicolon + 2, 7, "perhaps") != 0;
    if (!hasRemedy) return {text, ""};
    return {text.substr(0, semicolon), text.substr(semicolon + 2)};
}

const InterfaceLine* FindInterface(const std::vector<InterfaceLine>& lines,
                                   std::string InterfaceLine::*field, const std::string& value) {
    const auto found = std::find_if(lines.begin(), lines.end(), [&](const InterfaceLine& line) {
        return line.*field == value;
    });
    return found == lines.end() ? nullptr : &*found;
}

std::string LineToWrite(const std::string& className, const std::string& interfaceName) {
    return "write \"" + className + " " + interfaceName + " <library>\" into a .dicts file";
}

/// Why a process does not take what stands below the finding.
std::string WhyUnread(const Finding& finding) {
    if (finding.place.line == 0) return "another file of this name hides it";
    return "line " + std::to_string(finding.place.line) + " ends the reading";
}

}  // namespace

/// A road that is being gone, and what has been met on it.
struct RoadFinder::Walk {
    RequestRoad road;
    std::vector<Reason> reasons;
    std::vector<std::string> classes;

    void Tell(const std::string& about, const std::string& text, const Place& place = {}) {
        road.steps.push_back({about, place, text});
    }

    /// Gives the verdict back.
    Verdict Weigh(const Reason& reason) {
        reasons.push_back(reason);
        return reason.verdict;
    }

    bool HasAsked(const std::string& className) const {
        return std::find(classes.begin(), classes.end(), className) != classes.end();
    }
};

RoadFinder::RoadFinder(Survey& survey) : _survey(survey), _declared(survey.Manifests()) {
    for (const Manifest& manifest : survey.Manifests()) {
        _manifests.emplace(manifest.library.path, &manifest);
    }
    for (const PairLine& line : survey.Lines().pairs) {
        _classes.insert(line.className);
        _pairs[line.interfaceName].emplace(line.className, &line);
    }
    for (const ClassLine& line : survey.Lines().classes) _classes.insert(line.className);
}

RequestRoad RoadFinder::Find(const std::string& className, const std::string& interfaceNameOrId) {
    Walk walk;
    walk.road.className = className;
    walk.road.verdict = Ask(interfaceNameOrId, walk);
    if (walk.road.verdict != Verdict::Yes) {
        Conclude(walk);
        AddPassedOver(walk);
        AddNear(walk);
        walk.Tell("not known", "what programs and libraries register by their code");
    }
    return std::move(walk.road);
}

Verdict RoadFinder::Ask(const std::string& interfaceNameOrId, Walk& walk) {
    const Verdict named = NameInterface(interfaceNameOrId, walk);
    if (walk.road.interfaceName.empty()) return named;
    if (walk.road.interfaceName == kIUnknown) {
        walk.Tell("answer", "each object answers IUnknown itself");
        return Verdict::Yes;
    }
    const DeclaredClass* const declared = _declared.Find(walk.road.className);
    if (declared != nullptr && declared->isExtension && walk.road.interfaceName != kCreation) {
        return walk.Weigh({Verdict::Unknown, kLine,
                           "objects of the extension " + walk.road.className +
                               " pass each request on to the object that they extend",
                           "ask for the class of that object"});
    }
    return std::min(named, AskClasses(walk));
}

const PairLine* RoadFinder::FindPair(const std::string& className,
                                     const std::string& interfaceName) const {
    const auto ofInterface = _pairs.find(interfaceName);
    if (ofInterface == _pairs.end()) return nullptr;
    const auto found = ofInterface->second.find(className);
    return found == ofInterface->second.end() ? nullptr : found->second;
}

/// A process knows an interface by its id, and finds lines by its name.
Verdict RoadFinder::NameInterface(const std::string& nameOrId, Walk& walk) const {
    RequestRoad& road = walk.road;
    const std::string id = IdFromUser(nameOrId);
    const std::string idOfIUnknown = TextOf(IID_IUnknown);
    if (nameOrId == kIUnknown || id == idOfIUnknown) {
        road.interfaceName = kIUnknown;
        road.iid = idOfIUnknown;
        return Verdict::Yes;
    }
    if (id.empty()) road.interfaceName = nameOrId;
    if (nameOrId == kCreation) return Verdict::Yes;
    const auto field = id.empty() ? &InterfaceLine::name : &InterfaceLine::iid;
    const std::string& wanted = id.empty() ? nameOrId : id;
    if (const auto* const line = FindInterface(_survey.Lines().interfaces, field, wanted)) {
        road.interfaceName = line->name;
        road.iid = line->iid;
        walk.Tell("named", line->Text(), line->place);
        return Verdict::Yes;
    }
    road.iid = id;
    for (const Manifest& manifest : _survey.Manifests()) {
        const auto* const record = FindInterface(manifest.lines.interfaces, field, wanted);
        if (record == nullptr) continue;
        road.interfaceName = record->name;
        road.iid = record->iid;
        walk.Tell("named", record->Text() + "  (by the library's records alone)", record->place);
        break;
    }
    const std::string unknown = "no dictionary line gives " + (id.empty() ? nameOrId : "the id") +
                                (id.empty() ? " an id" : " a name");
    return walk.Weigh({Verdict::Unknown, kInterface, unknown + ", and only code could",
                       "write \"" + (road.iid.empty() ? "<id>" : road.iid) + " " +
                           (road.interfaceName.empty() ? "<name>" : road.interfaceName) +
                           "\" into an .iidts file"});
}

/// Asks the class and, while the answer is not yes, its base classes: what one of them may answer,
/// the request may get.
Verdict RoadFinder::AskClasses(Walk& walk) {
    Verdict verdict = Verdict::No;
    std::string className = walk.road.className;
    for (;;) {
        walk.classes.push_back(className);
        verdict = std::max(verdict, AskClass(className, walk));
        if (verdict == Verdict::Yes || walk.road.interfaceName == kCreation) return verdict;
        const DeclaredClass* const declared = _declared.Find(className);
        if (className == kBaseOfAll) return verdict;
        if (declared == nullptr) return std::max(verdict, AskUnknownBases(className, walk));
        if (declared->base.empty() || walk.HasAsked(declared->base)) return verdict;
        className = declared->base;
        walk.Tell("then", "its base class " + className + "  (by the library's records)",
                  declared->place);
    }
}

/// The class may derive from any that has a line: only its code tells.
Verdict RoadFinder::AskUnknownBases(const std::string& className, Walk& walk) {
    const std::string& interfaceName = walk.road.interfaceName;
    const auto ofInterface = _pairs.find(interfaceName);
    if (ofInterface == _pairs.end()) return Verdict::No;
    std::set<std::string> answering;
    for (const auto& [other, line] : ofInterface->second) {
        if (walk.HasAsked(other)) continue;
        Walk aside;
        if (AskLine(*line, aside) != Verdict::No) answering.insert(other);
    }
    if (answering.empty()) return Verdict::No;
    const std::string bases =
        answering.size() == 1
            ? *answering.begin() + ", which has one"
            : "one of the " + std::to_string(answering.size()) + " classes that have one";
    return walk.Weigh({Verdict::Unknown, kInterface,
                       "no line of " + className +
                           " leads to it, and whether the class derives "
                           "from " +
                           bases + ", only its code tells",
                       LineToWrite(className, interfaceName) + ", unless a base class answers"});
}

Verdict RoadFinder::AskClass(const std::string& className, Walk& walk) {
    const std::string& interfaceName = walk.road.interfaceName;
    if (const PairLine* const line = FindPair(className, interfaceName)) {
        return AskLine(*line, walk);
    }
    const bool isNamed = _classes.contains(className) || _declared.Find(className) != nullptr ||
                         className == kBaseOfAll;
    const std::string pair = className + " and " + interfaceName;
    walk.Tell("found", "no line for " + pair + " in " + Counted(_survey.Files().size(), "file"));
    if (isNamed) {
        return walk.Weigh({Verdict::No, kAbsence, "no dictionary line for " + pair,
                           LineToWrite(className, interfaceName)});
    }
    return walk.Weigh({Verdict::No, kInterface, "no line and no library names a class " + className,
                       "correct the name, or " + LineToWrite(className, interfaceName)});
}

/// All that the line leads to, in the order in which the search goes there.
Verdict RoadFinder::AskLine(const PairLine& line, Walk& walk) {
    walk.Tell("found", line.Text(), line.place);
    const auto named = _survey.Libraries().find(std::string(WithoutLib(line.library)));
    if (named == _survey.Libraries().end()) return Verdict::No;
    const NamedLibrary& library = named->second;
    const bool isCreation = line.interfaceName == kCreation;
    Verdict verdict = Verdict::Yes;
    if (!line.leaf.empty() && !isCreation) {
        verdict = walk.Weigh({Verdict::Unknown, kLine,
                              "whether the leaf interface " + line.leaf + " is derived from " +
                                  line.interfaceName +
                                  ", and has its meta-object in time, only code tells",
                              ""});
    }
    if (!line.extension.empty() && !isCreation) {
        verdict = std::min(verdict, AskExtension(line, library, walk));
    }
    verdict = std::min(verdict, AskLibrary(line, library, walk));
    const bool isLibrary = library.file != nullptr && library.file->object.has_value();
    return isLibrary ? std::min(verdict, AskEntryPoint(line, library, walk)) : verdict;
}

/// Whether the extension extends the class: its meta-object comes with the line's library.
Verdict RoadFinder::AskExtension(const PairLine& line, const NamedLibrary& library, Walk& walk) {
    const DeclaredClass* const declared = _declared.Find(line.extension);
    if (declared == nullptr) {
        return walk.Weigh({Verdict::Unknown, kLine,
                           "whether the extension " + line.extension + " extends " +
                               line.className + ", only code tells",
                           ""});
    }
    const std::string whyNot = _declared.WhyNotExtended(line);
    if (!whyNot.empty()) {
        const auto [text, remedy] = SplitRemedy(whyNot);
        return walk.Weigh({Verdict::No, kLine, text, remedy});
    }
    walk.Tell("extension", line.extension + " extends " + line.className, declared->place);
    if (library.file == nullptr) return Verdict::Yes;
    const std::vector<const LoaderFile*>& files = _survey.Loads().ClosureOf(*library.file).files;
    const bool comesWith = std::any_of(files.begin(), files.end(), [&](const LoaderFile* file) {
        return file->pathHere == declared->place.file;
    });
    if (comesWith) return Verdict::Yes;
    return walk.Weigh({Verdict::Unknown, kLine,
                       line.extension + " is described in a library that the line does not load, " +
                           declared->place.file,
                       "name that library in the line"});
}

/// Whether the library loads.
Verdict RoadFinder::AskLibrary(const PairLine& line, const NamedLibrary& library,
                               Walk& walk) const {
    const LibrarySearch& search = _survey.Search();
    const std::string wrong = WrongFile(library, search);
    if (!wrong.empty()) return walk.Weigh({Verdict::No, kLine, wrong, "put the right file there"});
    if (library.file == nullptr) {
        walk.Tell("tried", WhereNotFound(library, search.Places()));
        const std::string near = NearFiles(library, search.Places());
        if (!near.empty()) walk.Tell("near", near);
        return walk.Weigh({Verdict::No, kLine, line.library + " is not found",
                           "put it where the loader looks, name its folder with --libraries if the "
                           "program finds it there, or correct the line"});
    }
    walk.Tell("library", Shown(*library.file));
    Verdict verdict = Verdict::Yes;
    for (const LoadProblem& problem : library.problems) {
        const auto [text, remedy] = SplitRemedy(problem.text);
        const bool isFatal = problem.severity == Severity::Error;
        const Verdict open = isFatal ? Verdict::No : Verdict::Unknown;
        verdict = std::min(verdict, walk.Weigh({open, kLine, text, remedy}));
    }
    return verdict;
}

/// Whether the library itself exports the function that the line leads to.
Verdict RoadFinder::AskEntryPoint(const PairLine& line, const NamedLibrary& library, Walk& walk) {
    const auto manifest = _manifests.find(library.file->pathHere);
    if (manifest == _manifests.end()) return Verdict::No;
    MissingFunctions missing(manifest->second->library, [&](const std::string& symbol) {
        return _survey.Loads().NeededWith(*library.file, symbol);
    });
    RequireEntryPoints({{line}, {}, {}}, [&](const std::string&) { return &missing; });
    Findings lacks;
    missing.Tell(lacks);
    if (lacks.All().empty()) {
        walk.Tell("function", EntryPointOf(line).Symbol());
        return Verdict::Yes;
    }
    const auto [text, remedy] = SplitRemedy(lacks.All().front().text);
    return walk.Weigh({Verdict::No, kLine, text, remedy});
}

/// The cause is what rules the answer out, or keeps it open: the heaviest reason and of these the
/// first. The others are told behind the road.
void RoadFinder::Conclude(Walk& walk) {
    RequestRoad& road = walk.road;
    const Reason* cause = nullptr;
    for (const Reason& reason : walk.reasons) {
        if (road.verdict == Verdict::No && reason.verdict != Verdict::No) continue;
        if (cause == nullptr || reason.weight > cause->weight) cause = &reason;
    }
    for (const Reason& reason : walk.reasons) {
        const bool isTold = &reason == cause || reason.weight == kAbsence;
        if (!isTold) walk.Tell("also", reason.text);
    }
    if (cause == nullptr) return;
    road.cause = cause->text;
    road.remedy = cause->remedy;
}

/// Lines that would do, but stand where a process does not read them.
void RoadFinder::AddPassedOver(Walk& walk) const {
    static const std::set<std::string> kUnread = {"hidden-file", "bad-line", "two-ids",
                                                  "two-names"};
    for (const Finding& finding : _survey.Found().All()) {
        if (!kUnread.contains(finding.kind)) continue;
        Findings ignored;
        DictionaryLines lines;
        ReadDictionaryFile(finding.place.file, BadLine::IsLeftOut, lines, ignored);
        const auto tell = [&](const auto& line) {
            if (line.place.line <= finding.place.line) return;
            walk.Tell("passed over", line.Text() + "  (" + WhyUnread(finding) + ")", line.place);
        };
        for (const PairLine& line : lines.pairs) {
            const bool isAsked = line.interfaceName == walk.road.interfaceName;
            if (isAsked && walk.HasAsked(line.className)) tell(line);
        }
        for (const InterfaceLine& line : lines.interfaces) {
            if (line.name == walk.road.interfaceName) tell(line);
        }
    }
}

void RoadFinder::AddNear(Walk& walk) const {
    const RequestRoad& road = walk.road;
    const bool hasLine = std::any_of(walk.reasons.begin(), walk.reasons.end(),
                                     [](const Reason& reason) { return reason.weight == kLine; });
    if (hasLine || road.interfaceName.empty()) return;
    const std::vector<PairLine>& lines = _survey.Lines().pairs;
    for (const NearPair& near : NearPairs(walk.classes, road.interfaceName, lines)) {
        walk.Tell("near", near.line->Text() + "  (" + near.difference + ")", near.line->place);
    }
}

}  // namespace lyr::inspection
