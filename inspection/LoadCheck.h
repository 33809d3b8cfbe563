#pragma once

#include "inspection/Findings.h"
#include "inspection/LibrarySearch.h"

#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace lyr::inspection {

/// Why a library does not load, or may not.
struct LoadProblem {
    Severity severity = Severity::Error;
    std::string kind;
    /// What the cause is about: problems of one kind and subject have one cause, whichever library
    /// meets it.
    std::string subject;
    std::string text;
};

/// The base name of a library's file and, in parentheses, its path.
std::string Shown(const LoaderFile& file);

/// What a file brings with it when it is loaded.
struct Closure {
    struct Lack {
        std::string name;
        const LoaderFile* by = nullptr;
        FoundLibrary found;
    };

    /// The file itself and what it needs, in the order of loading.
    std::vector<const LoaderFile*> files;
    /// Under the names by which they are needed.
    std::unordered_map<std::string_view, const LoaderFile*> byName;
    std::vector<Lack> lacks;
    /// Whether it needs the component model, and that is not at hand to be looked at.
    bool hasUnknown = false;
};

/// Tells whether libraries would load in a process: whole and at once, with their symbols for
/// themselves, beside what the program has brought.
class LoadCheck {
public:
    explicit LoadCheck(LibrarySearch& search);

    /// What keeps the library from loading; all of it, nothing when it loads.
    std::vector<LoadProblem> ProblemsOf(const LoaderFile& library);

    const Closure& ClosureOf(const LoaderFile& library);

    /// What the library needs and has a function of that name; null for none.
    const LoaderFile* NeededWith(const LoaderFile& library, const std::string& symbol);

    /// The library that a process has before it loads any, by a name under which it is asked for.
    /// Null for none.
    const LoaderFile* LoadedAtStart(std::string_view name) const;

    /// What keeps the program itself from starting.
    std::vector<LoadProblem> ProblemsOfProgram();

private:
    Closure MakeClosure(const LoaderFile& start);
    void Need(std::string_view name, const Requester& by, Closure& closure);
    void KeepAsLoaded(const Closure& closure);
    bool IsProvided(const VersionedSymbol& symbol, const Closure& closure) const;
    const std::vector<VersionedSymbol>& NotProvidedAround(const LoaderFile& file);
    void AddLacks(const LoaderFile& library, std::vector<LoadProblem>& problems);
    void AddMissingVersions(const LoaderFile& library, std::vector<LoadProblem>& problems);
    void AddUndefined(const LoaderFile& library, std::vector<LoadProblem>& problems);

    LibrarySearch& _search;
    std::unordered_map<const LoaderFile*, Closure> _closures;
    std::unordered_map<const LoaderFile*, std::vector<VersionedSymbol>> _notProvided;
    std::unordered_map<std::string_view, const LoaderFile*> _atStart;
    std::unordered_set<const LoaderFile*> _filesAtStart;
    const Closure* _ofProgram = nullptr;
};

}  // namespace lyr::inspection
