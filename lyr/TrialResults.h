#pragma once

#include "inspection/Declarations.h"
#include "inspection/LibraryNames.h"
#include "inspection/Survey.h"
#include "lyr/ChildProcess.h"
#include "lyr/TrialRecords.h"

#include <set>
#include <string>
#include <vector>

namespace lyr::program {

/// A library that is tried, with the lines that lead to its file, whatever they call it.
struct Trial {
    const inspection::NamedLibrary* library = nullptr;
    std::vector<const inspection::PairLine*> pairs;
    std::set<std::string> functions;
};

/// How a child ended that did not do all: "ends the process with status 3".
std::string WordsOf(const ChildEnd& end, double limitInSeconds);

/// Adds to a survey's findings what the trials of its libraries have shown.
class TrialResults {
public:
    /// The survey outlives the object.
    TrialResults(double limitInSeconds, inspection::Survey& survey);

    void Add(const Trial& trial, const ChildEnd& end);

private:
    inspection::Findings& Found() { return _survey.Found(); }

    void AddRefusal(const Trial& trial, const std::string& words);
    void AddMissing(const Trial& trial, const std::string& symbol);
    void AddUnknown(const Trial& trial, const TrialRecord& reply);
    void AddExtension(const Trial& trial, const inspection::PairLine& line,
                      const std::string& state);
    void AddEnd(const Trial& trial, const ChildEnd& end, bool hasLoaded);

    const double _limitInSeconds;
    inspection::Survey& _survey;
    const inspection::Declarations _declared;
    std::set<const inspection::PairLine*> _told;
};

}  // namespace lyr::program
