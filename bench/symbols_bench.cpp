// What the size of a library costs: a first request through one that is loaded, against dlopen and
// dlsym of the same entry points; and the making of an object by class id. Each is measured with a
// small library and a large one. The first requests are those of a process of its own, as each
// happens once. The arguments are a size, which does not matter, and two other sets of one library
// (start_files), of 400 entry points at least and of more.

#include "Alone.h"
#include "StartRoads.h"

namespace {

using bench::FirstRequests, bench::OwnRoad, bench::StartEntry, bench::StartSet;

/// Asked for are all interfaces of so many classes, which the small library has, and of one more
/// beforehand, so that the library is loaded.
constexpr std::size_t kClasses = 39;
constexpr std::size_t kRequests = kClasses * StartSet::kInterfaces;

/// The entries of random classes of a set, those of the class for the warm-up first.
std::vector<std::size_t> ChooseEntries(const StartSet& set) {
    std::vector<std::size_t> classes = bench::RandomOrder(set.Classes());
    classes.resize(kClasses + 1);
    std::vector<std::size_t> entries;
    for (const std::size_t number : classes) {
        for (std::size_t i = 0; i < StartSet::kInterfaces; ++i) {
            entries.push_back(number * StartSet::kInterfaces + i);
        }
    }
    std::shuffle(entries.begin() + StartSet::kInterfaces, entries.end(), std::mt19937(3));
    return entries;
}

int RequestInterfaces(const StartSet& set) {
    OwnRoad road;
    FirstRequests requests(road, set, ChooseEntries(set));
    requests.Make(0, StartSet::kInterfaces);
    const double seconds =
        bench::Seconds([&] { requests.Make(StartSet::kInterfaces, requests.Count()); });
    return bench::TellSeconds(seconds, requests.AreAnswered());
}

/// Without any name to make or to look up: file and symbols are at hand.
int OpenAndFind(const StartSet& set) {
    const std::string file = set.LibraryName(0) + ".so";
    std::vector<std::string> symbols;
    for (const std::size_t number : ChooseEntries(set)) {
        symbols.push_back(StartEntry(set, number).Symbol(set));
    }
    std::vector<void*> found;
    found.reserve(symbols.size());
    const auto find = [&](std::size_t first, std::size_t last) {
        for (std::size_t i = first; i < last; ++i) {
            void* const library = ::dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
            found.push_back(library != nullptr ? ::dlsym(library, symbols[i].c_str()) : nullptr);
        }
    };
    find(0, StartSet::kInterfaces);
    const double seconds = bench::Seconds([&] { find(StartSet::kInterfaces, symbols.size()); });
    return bench::TellSeconds(seconds, std::ranges::count(found, nullptr) == 0);
}

void RegisterRequests(const StartSet& set, const std::string& size) {
    for (const char* const road : {"own", "dlopen + dlsym"}) {
        const std::string arguments =
            std::string(road).substr(0, 3) + " '" + set.directory.string() + "'";
        bench::RegisterAlone("FirstRequest/" + size + '/' + road, arguments, kRequests);
    }
}

/// The classes that are asked for are as many in all sizes, and their lines write the library
/// alike.
void RegisterCreation(const StartSet& set, const std::string& size, bool writesLib) {
    constexpr std::size_t kCreated = 2;
    const std::vector<GUID> ids = set.Ids();
    std::vector<GUID> classes;
    for (std::size_t number = 0; classes.size() < kCreated; ++number) {
        if (StartSet::WritesLib(number) == writesLib) {
            classes.push_back(ids[set.Interfaces() + number]);
        }
    }
    const auto create = [](const GUID& clsid) {
        void* object = nullptr;
        LYRSysTSCreateInstance(clsid, IID_IUnknown, &object);
        return object != nullptr;
    };
    const auto run = [=](benchmark::State& state) {
        create(classes[0]);  // reads the files and loads the library
        std::size_t next = 0;
        benchmark::IterationCount made = 0;
        for (auto _ : state) {
            if (create(classes[next++ % kCreated])) ++made;
        }
        bench::Expect(state, made == state.iterations());
    };
    const char* const name = writesLib ? "CreateById/lib/" : "CreateById/";
    bench::Register(bench::Company::kThreads, name + size, run);
}

/// Starts the program again with the libraries on the loader's path, which is read at the start.
void EnsureLibraryPath(const std::string& path, char** argv) {
    const char* const known = std::getenv("LD_LIBRARY_PATH");
    if (known != nullptr && known == path) return;
    ::setenv("LD_LIBRARY_PATH", path.c_str(), 1);
    ::execv("/proc/self/exe", argv);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc == 4 && std::string(argv[1]) == bench::kMeasure) {
        bench::EnsureCompanion();
        const StartSet set = StartSet::In(argv[3]);
        return std::string(argv[2]) == "own" ? RequestInterfaces(set) : OpenAndFind(set);
    }
    std::vector<char*> all(argv, argv + argc + 1);
    benchmark::Initialize(&argc, argv);
    const std::string sets = LYR_BENCH_SETS "/";
    // The tables hold the entries of all of them, whichever is asked for.
    const StartSet small = StartSet::In(argc > 3 ? argv[2] : sets + "symbols-400");
    const StartSet large = StartSet::In(argc > 3 ? argv[3] : sets + "symbols-20000");
    const StartSet fewExports = argc > 3 ? small : StartSet::In(sets + "exports-40");
    const StartSet manyExports = argc > 3 ? large : StartSet::In(sets + "exports-40000");
    std::string libraries;
    std::string dictionaries;
    for (const StartSet& set : {small, large, fewExports, manyExports}) {
        libraries += set.LibraryDirectory().string() + ':';
        dictionaries += set.DictionaryPath() + ':';
    }
    EnsureLibraryPath(libraries, all.data());
    ::setenv("LYRDictionaryPath", dictionaries.c_str(), 1);

    // In turns, as the machine may change its pace.
    const int turns = bench::SizeArgument(argc, argv) < 20'000 ? 1 : 10;
    for (int turn = 0; turn < turns; ++turn) {
        RegisterRequests(small, "small");
        RegisterRequests(large, "large");
    }
    for (int turn = 0; turn < 2; ++turn) {
        for (const bool writesLib : {false, true}) {
            RegisterCreation(fewExports, "few", writesLib);
            RegisterCreation(manyExports, "many", writesLib);
        }
    }
    benchmark::RunSpecifiedBenchmarks();
}
