// The start of an application: objects of random classes, each asked for an interface that nobody
// has asked its class for, against a hand-made road to the same libraries. It has the dictionary
// files read and the libraries loaded. And the reading alone. Each start is a process of its own.
// The arguments are the most requests and the directory of another set of libraries (start_files).

#include "Alone.h"
#include "StartRoads.h"

#include <latch>

namespace {

using bench::FirstRequests, bench::HandMadeRoad, bench::OwnRoad, bench::StartEntry, bench::StartSet;

/// All requests, by so many threads at a time.
template <typename Road>
double MakeAll(FirstRequests<Road>& requests, std::size_t threads) {
    const auto makeShare = [&](std::size_t share) {
        requests.Make(requests.Count() * share / threads, requests.Count() * (share + 1) / threads);
    };
    std::latch areThere(static_cast<std::ptrdiff_t>(threads));
    std::latch begin(1);
    std::vector<std::jthread> others;
    for (std::size_t share = 1; share < threads; ++share) {
        others.emplace_back([&, share] {
            areThere.count_down();
            begin.wait();
            makeShare(share);
        });
    }
    areThere.arrive_and_wait();
    return bench::Seconds([&] {
        begin.count_down();
        makeShare(0);
        others.clear();
    });
}

template <typename Road>
int Start(const StartSet& set, std::size_t count, std::size_t threads) {
    std::vector<std::size_t> entries = bench::RandomOrder(set.Entries());
    entries.resize(std::min(count, entries.size()));
    Road road;
    FirstRequests requests(road, set, entries);
    const double seconds = MakeAll(requests, threads);
    return bench::TellSeconds(seconds, requests.AreAnswered());
}

template <typename Road>
int Read(const StartSet& set) {
    Road road;
    const double seconds = bench::Seconds([&] { road.Read(); });
    const std::vector<GUID> ids = set.Ids();
    bool knowsAll = true;
    for (std::size_t i = 0; i < set.Entries(); ++i) {
        const StartEntry entry(set, i);
        knowsAll &=
            road.Knows(set.ClassName(entry.classNumber), set.InterfaceName(entry.interfaceNumber),
                       ids[entry.interfaceNumber], ids[set.Interfaces() + entry.classNumber]);
    }
    return bench::TellSeconds(seconds, knowsAll);
}

/// In a process of its own: <road> <directory> <requests> <threads>; without requests, it reads.
template <typename Road>
int Measure(char** arguments) {
    bench::EnsureCompanion();
    const StartSet set = StartSet::In(arguments[0]);
    const std::size_t count = std::strtoul(arguments[1], nullptr, 10);
    const std::size_t threads = std::strtoul(arguments[2], nullptr, 10);
    return count != 0 ? Start<Road>(set, count, threads) : Read<Road>(set);
}

void Register(const StartSet& set, const std::string& name, std::size_t requests,
              std::size_t threads) {
    for (const char* const road : {"own", "hand-made"}) {
        bench::RegisterAlone("Start/" + name + '/' + road,
                             std::string(road) + " '" + set.directory.string() + "' " +
                                 std::to_string(requests) + ' ' + std::to_string(threads));
    }
}

}  // namespace

int main(int argc, char** argv) {
    if (argc == 6 && std::string(argv[1]) == bench::kMeasure) {
        const bool isOwn = std::string(argv[2]) == "own";
        return isOwn ? Measure<OwnRoad>(argv + 3) : Measure<HandMadeRoad>(argv + 3);
    }
    benchmark::Initialize(&argc, argv);
    const std::size_t largest = bench::SizeArgument(argc, argv);
    const StartSet set = StartSet::In(argc > 2 ? argv[2] : LYR_BENCH_SETS "/start");
    ::setenv("LYRDictionaryPath", set.DictionaryPath().c_str(), 1);
    ::setenv("LD_LIBRARY_PATH", set.LibraryDirectory().c_str(), 1);
    // In turns, as the machine may change its pace; the first starts only fill the system's caches.
    const int turns = largest < 20'000 ? 1 : 5;
    bench::MeasureAlone("hand-made '" + set.directory.string() + "' " +
                        std::to_string(set.Entries()) + " 1");
    for (int turn = 0; turn < turns; ++turn) {
        Register(set, "read", 0, 1);
        for (const std::size_t requests : {5'000, 20'000}) {
            if (requests > largest) break;
            for (const std::size_t threads : {1, 4}) {
                Register(set, std::to_string(requests) + "/threads:" + std::to_string(threads),
                         requests, threads);
            }
        }
    }
    benchmark::RunSpecifiedBenchmarks();
}
