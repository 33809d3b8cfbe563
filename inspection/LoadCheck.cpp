#include "inspection/LoadCheck.h"

#include "LYRVersion.h"

#include <algorithm>
#include <deque>
#include <dlfcn.h>
#include <iterator>

namespace lyr::inspection {

namespace {

std::string_view BaseOf(std::string_view path) {
    return path.substr(path.rfind('/') + 1);
}

/// Whether the name is that of one of our two libraries, which a process has before it loads any
/// component.
bool IsOfModel(std::string_view name) {
    return name.starts_with("libLYRComponentModel.so") || name.starts_with("libLYRSysTS.so");
}

/// The component model that this program uses; empty when the loader does not tell.
std::string OwnModel() {
    Dl_info info{};
    if (::dladdr(reinterpret_cast<const void*>(&LYRVersion), &info) == 0) return {};
    return info.dli_fname;
}

std::string TextOf(const VersionedSymbol& symbol) {
    std::string text(symbol.name);
    if (!symbol.version.empty()) text.append("@").append(symbol.version);
    return text;
}

/// The first few symbols, and how many more there are.
std::string TextOf(const std::vector<VersionedSymbol>& symbols) {
    constexpr std::size_t kShown = 3;
    std::string text;
    for (std::size_t i = 0; i < std::min(kShown, symbols.size()); ++i) {
        text.append(i == 0 ? "" : ", ").append(TextOf(symbols[i]));
    }
    if (symbols.size() > kShown) {
        text += " and " + std::to_string(symbols.size() - kShown) + " more";
    }
    return text;
}

/// The library that is lacking, and what is the matter with it.
std::string LackText(const Closure::Lack& lack) {
    if (lack.found.file != nullptr) {
        const auto& object = lack.found.file->object;
        return Shown(*lack.found.file) + ", which " +
               (object ? object->whyNotLoaded : lack.found.file->whyUnreadable);
    }
    if (lack.found.foreign != nullptr) {
        return lack.name + ", which is there for " + NameOf(lack.found.foreign->object->processor) +
               " alone (" + lack.found.foreign->path + ")";
    }
    return lack.name + ", which is not found";
}

}  // namespace

std::string Shown(const LoaderFile& file) {
    const std::string base(BaseOf(file.path));
    return base == file.path ? base : base + " (" + file.path + ")";
}

LoadCheck::LoadCheck(LibrarySearch& search) : _search(search) {
    if (search.Program() != nullptr) {
        _ofProgram = &ClosureOf(*search.Program());
        KeepAsLoaded(*_ofProgram);
    }
    const std::string model = OwnModel();
    if (search.Places().image.IsThisMachine() && !model.empty()) {
        KeepAsLoaded(ClosureOf(search.Read(model)));
    }
}

void LoadCheck::KeepAsLoaded(const Closure& closure) {
    for (const LoaderFile* const file : closure.files) {
        if (!file->object || file == _search.Program()) continue;
        _filesAtStart.insert(file);
        _atStart.try_emplace(file->object->soname, file);
        _atStart.try_emplace(BaseOf(file->path), file);
    }
    for (const auto& [name, file] : closure.byName) _atStart.try_emplace(name, file);
}

const LoaderFile* LoadCheck::LoadedAtStart(std::string_view name) const {
    const auto found = _atStart.find(name);
    return found == _atStart.end() ? nullptr : found->second;
}

const Closure& LoadCheck::ClosureOf(const LoaderFile& library) {
    const auto known = _closures.find(&library);
    if (known != _closures.end()) return known->second;
    return _closures.emplace(&library, MakeClosure(library)).first->second;
}

const LoaderFile* LoadCheck::NeededWith(const LoaderFile& library, const std::string& symbol) {
    for (const LoaderFile* const needed : ClosureOf(library).files) {
        if (needed != &library && needed->object->definitions.contains(symbol)) return needed;
    }
    return nullptr;
}

Closure LoadCheck::MakeClosure(const LoaderFile& start) {
    Closure closure;
    closure.files.push_back(&start);
    if (!start.object) return closure;
    closure.byName.emplace(start.object->soname, &start);
    std::deque<Requester> requesters{{&start, nullptr}};
    for (std::size_t next = 0; next < requesters.size(); ++next) {
        const Requester& by = requesters[next];
        const std::size_t before = closure.files.size();
        for (const std::string_view name : by.file->object->needed) {
            if (!closure.byName.contains(name)) Need(name, by, closure);
        }
        for (std::size_t i = before; i < closure.files.size(); ++i) {
            requesters.push_back({closure.files[i], &by});
        }
    }
    return closure;
}

/// Adds what the loader takes under the name: what is there already, or a file that it finds.
void LoadCheck::Need(std::string_view name, const Requester& by, Closure& closure) {
    FoundLibrary found{LoadedAtStart(name), nullptr};
    if (found.file == nullptr) found = _search.Find(std::string(name), by);
    const LoaderFile* const file = found.file;
    if (file != nullptr && file->object && file->object->whyNotLoaded.empty()) {
        closure.byName.emplace(name, file);
        if (!file->object->soname.empty()) closure.byName.emplace(file->object->soname, file);
        const bool isNew =
            std::find(closure.files.begin(), closure.files.end(), file) == closure.files.end();
        if (isNew) closure.files.push_back(file);
    } else if (file == nullptr && IsOfModel(name)) {
        closure.hasUnknown = true;
    } else {
        const auto isSame = [&](const Closure::Lack& lack) { return lack.name == name; };
        const auto& lacks = closure.lacks;
        if (std::any_of(lacks.begin(), lacks.end(), isSame)) return;
        closure.lacks.push_back({std::string(name), by.file, found});
    }
}

std::vector<LoadProblem> LoadCheck::ProblemsOf(const LoaderFile& library) {
    std::vector<LoadProblem> problems;
    if (_filesAtStart.contains(&library)) return problems;
    AddLacks(library, problems);
    AddMissingVersions(library, problems);
    // What is not there may be what would define the rest.
    if (problems.empty() && !ClosureOf(library).hasUnknown) AddUndefined(library, problems);
    return problems;
}

std::vector<LoadProblem> LoadCheck::ProblemsOfProgram() {
    std::vector<LoadProblem> problems;
    const LoaderFile* const program = _search.Program();
    if (program == nullptr) return problems;
    if (!program->object) {
        problems.push_back(
            {Severity::Error, "not-a-program", program->path, program->whyUnreadable});
        return problems;
    }
    AddLacks(*program, problems);
    AddMissingVersions(*program, problems);
    return problems;
}

void LoadCheck::AddLacks(const LoaderFile& library, std::vector<LoadProblem>& problems) {
    for (const Closure::Lack& lack : ClosureOf(library).lacks) {
        const std::string by = lack.by == &library ? "it" : Shown(*lack.by);
        problems.push_back({Severity::Error, "missing-dependency", lack.name,
                            Shown(library) + " does not load: " + by + " needs " + LackText(lack) +
                                "; install it, or lead there by a run path or LD_LIBRARY_PATH"});
    }
}

void LoadCheck::AddMissingVersions(const LoaderFile& library, std::vector<LoadProblem>& problems) {
    const Closure& closure = ClosureOf(library);
    for (const LoaderFile* const file : closure.files) {
        if (_filesAtStart.contains(file) || !file->object) continue;
        for (const NeededVersion& needed : file->object->neededVersions) {
            const auto found = closure.byName.find(needed.library);
            if (found == closure.byName.end() || needed.isWeak) continue;
            const LoaderFile& of = *found->second;
            if (of.object->versions.empty() || of.object->DefinesVersion(needed.version)) continue;
            problems.push_back(
                {Severity::Error, "missing-version",
                 std::string(needed.library) + " " + std::string(needed.version),
                 Shown(library) + " does not load: " + (file == &library ? "it" : Shown(*file)) +
                     " needs version " + std::string(needed.version) + " of " + Shown(of) +
                     ", which has none of that name; perhaps it was built for a later one"});
        }
    }
}

bool LoadCheck::IsProvided(const VersionedSymbol& symbol, const Closure& closure) const {
    const auto provides = [&](const LoaderFile* file) {
        return file->object && file->object->Provides(symbol);
    };
    if (std::any_of(closure.files.begin(), closure.files.end(), provides)) return true;
    return _ofProgram != nullptr &&
           std::any_of(_ofProgram->files.begin(), _ofProgram->files.end(), provides);
}

/// The symbols of a file that nothing defines which comes with it or the program: mostly none, so
/// that libraries which many need are gone through once.
const std::vector<VersionedSymbol>& LoadCheck::NotProvidedAround(const LoaderFile& file) {
    const auto [place, isNew] = _notProvided.try_emplace(&file);
    if (!isNew) return place->second;
    const Closure& closure = ClosureOf(file);
    std::copy_if(file.object->undefined.begin(), file.object->undefined.end(),
                 std::back_inserter(place->second),
                 [&](const VersionedSymbol& symbol) { return !IsProvided(symbol, closure); });
    return place->second;
}

void LoadCheck::AddUndefined(const LoaderFile& library, std::vector<LoadProblem>& problems) {
    const Closure& closure = ClosureOf(library);
    for (const LoaderFile* const file : closure.files) {
        if (_filesAtStart.contains(file)) continue;
        std::vector<VersionedSymbol> missing;
        for (const VersionedSymbol& symbol : NotProvidedAround(*file)) {
            if (!IsProvided(symbol, closure)) missing.push_back(symbol);
        }
        if (missing.empty()) continue;
        const std::string by = file == &library ? "it" : Shown(*file);
        const bool isKnown = _ofProgram != nullptr;
        problems.push_back(
            {isKnown ? Severity::Error : Severity::Remark, "undefined-symbol", file->path,
             isKnown ? Shown(library) + " does not load: nothing that it can see defines " +
                           TextOf(missing) + ", and " + by +
                           " needs that; link it with the library that does"
                     : Shown(library) + " loads only in a program that defines " + TextOf(missing) +
                           ", which " + by + " needs; --program names the program"});
    }
}

}  // namespace lyr::inspection
