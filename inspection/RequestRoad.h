#pragma once

#include "inspection/Declarations.h"
#include "inspection/Survey.h"

#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace lyr::inspection {

/// How a request would be answered; `Unknown` for what only the libraries' code tells.
enum class Verdict { No, Unknown, Yes };

/// Something met on the road of a request: a word that tells what it is about, and what is so. The
/// file is empty for what stands in none.
struct RoadStep {
    std::string about;
    Place place;
    std::string text;
};

/// A request, how it would be answered, and why.
struct RequestRoad {
    std::string className;
    /// Empty where it is not known.
    std::string interfaceName;
    /// In capitals and braces; empty where it is not known.
    std::string iid;

    Verdict verdict = Verdict::No;
    /// What decides, and what to do about it; empty for an answer, or where nothing can be done.
    std::string cause;
    std::string remedy;
    std::vector<RoadStep> steps;
};

/// Goes the roads of requests: through the dictionaries and the libraries that these name, as a
/// process does, but without loading any.
class RoadFinder {
public:
    /// The survey outlives the object.
    explicit RoadFinder(Survey& survey);

    /// The road of a request for an interface, by its name or its id, to an object of the class.
    /// "CreateInterface" stands for the making of an object by the name of its class.
    RequestRoad Find(const std::string& className, const std::string& interfaceNameOrId);

private:
    /// What a part of the road says of the answer; of several, the heaviest is the cause.
    struct Reason {
        Verdict verdict;
        int weight;
        std::string text;
        std::string remedy;
    };
    struct Walk;

    const PairLine* FindPair(const std::string& className, const std::string& interfaceName) const;
    Verdict Ask(const std::string& interfaceNameOrId, Walk& walk);
    Verdict NameInterface(const std::string& nameOrId, Walk& walk) const;
    Verdict AskClasses(Walk& walk);
    Verdict AskUnknownBases(const std::string& className, Walk& walk);
    Verdict AskClass(const std::string& className, Walk& walk);
    Verdict AskLine(const PairLine& line, Walk& walk);
    Verdict AskExtension(const PairLine& line, const NamedLibrary& library, Walk& walk);
    Verdict AskLibrary(const PairLine& line, const NamedLibrary& library, Walk& walk) const;
    Verdict AskEntryPoint(const PairLine& line, const NamedLibrary& library, Walk& walk);
    static void Conclude(Walk& walk);
    void AddPassedOver(Walk& walk) const;
    void AddNear(Walk& walk) const;

    Survey& _survey;
    Declarations _declared;
    /// By the paths of the libraries.
    std::unordered_map<std::string, const Manifest*> _manifests;
    std::unordered_set<std::string> _classes;
    /// By the names of interface and class.
    std::unordered_map<std::string, std::unordered_map<std::string, const PairLine*>> _pairs;
};

}  // namespace lyr::inspection
