// What the authoring kit adds to what is written by hand: requests, counts and objects of each kind
// of implementation, used by a client on the kit and by one without it. All of them are in one
// library, found through dictionary files. Both are measured in short turns, so that a machine that
// changes its pace does it to both.

#include "Alone.h"
#include "KitBench.h"
#include "LYRComponentModel.h"
#include "Ref.h"

#include <algorithm>
#include <array>
#include <lyr/kit.h>
#include <memory>
#include <vector>

namespace {

/// The client without the kit, and the same on it.
struct ByHand {
    static Ref<IUnknown> Own(void* made) { return Ref<IUnknown>(static_cast<IUnknown*>(made)); }
    static Ref<IWork> Ask(const Ref<IUnknown>& object) {
        return Query<IWork>(object.get(), lyr::IdOf<IWork>());
    }
    static Ref<IWork> Count(const Ref<IWork>& work) {
        work->AddRef();
        return Ref<IWork>(work.get());
    }
};
struct OnKit {
    static lyr::Ref<IUnknown> Own(void* made) { return lyr::Take(static_cast<IUnknown*>(made)); }
    static lyr::Ref<IWork> Ask(const lyr::Ref<IUnknown>& object) { return object.TryAs<IWork>(); }
    static lyr::Ref<IWork> Count(const lyr::Ref<IWork>& work) { return work; }
};

/// An object of a class, and what is measured of it.
template <class Client>
class Subject {
public:
    explicit Subject(const std::string& className)
        : _create(reinterpret_cast<void* (*)(void*)>(LYRThrLibraryManager::GetFunctionAddress(
              "KitBench", ("fctLYRSysTSCreate" + className).c_str()))),
          _object(Client::Own(LYRSysTSCreateExternalObject(className.c_str(), nullptr, nullptr))),
          _work(_object ? Client::Ask(_object) : nullptr) {}

    bool IsThere() const { return _create != nullptr && _work && _work->Work() == 1; }

    void Request() const {
        const auto work = Client::Ask(_object);
        benchmark::DoNotOptimize(work);
    }
    void Count() const {
        const auto work = Client::Count(_work);
        benchmark::DoNotOptimize(work);
    }
    void Create() const {
        const auto object = Client::Own(_create(nullptr));
        benchmark::DoNotOptimize(object);
    }
    void CreateAndRequest() const {
        const auto object = Client::Own(_create(nullptr));
        const auto work = Client::Ask(object);
        benchmark::DoNotOptimize(work);
    }

private:
    void* (*_create)(void*);
    decltype(Client::Own(nullptr)) _object;
    decltype(Client::Ask(_object)) _work;
};

double Median(std::vector<double>& values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

constexpr int kEach = 500;  // so long as not to feel the clock, so short as to be disturbed seldom

/// The seconds of each of the two per `kEach` times, medians of many.
template <class First, class Second>
std::array<double, 2> MeasureInTurns(const First& first, const Second& second) {
    constexpr int kRounds = 2000;
    const auto times = [](const auto& work) {
        return bench::Seconds([&] {
            for (int i = 0; i < kEach; ++i) work();
        });
    };
    std::vector<double> ofFirst;
    std::vector<double> ofSecond;
    for (int round = 0; round < kRounds; ++round) {
        if (round % 2 == 0) ofFirst.push_back(times(first));
        ofSecond.push_back(times(second));
        if (round % 2 != 0) ofFirst.push_back(times(first));
    }
    return {Median(ofFirst), Median(ofSecond)};
}

/// Registers one of the operations for two classes that do the same. Whichever of the two figures
/// is asked for first has both measured.
template <void (Subject<ByHand>::*byHand)() const, void (Subject<OnKit>::*onKit)() const>
void Register(const std::string& what, const std::string& handClass, const std::string& kitClass) {
    const auto medians = std::make_shared<std::array<double, 2>>();
    const auto run = [=](benchmark::State& state, std::size_t which) {
        if ((*medians)[which] == 0) {
            const Subject<ByHand> hand(handClass);
            const Subject<OnKit> kit(kitClass);
            if (!hand.IsThere() || !kit.IsThere()) return state.SkipWithError("it does not work");
            *medians = MeasureInTurns([&] { (hand.*byHand)(); }, [&] { (kit.*onKit)(); });
        }
        for (auto _ : state) state.SetIterationTime((*medians)[which]);
        bench::CountEach(state, kEach);
    };
    for (const std::size_t which : {0, 1}) {
        const std::string name = "Kit/" + what + (which == 0 ? "/by hand" : "/own");
        benchmark::RegisterBenchmark(name.c_str(), run, which)
            ->UseManualTime()
            ->Iterations(1)
            ->Setup(bench::StartCompanion);
    }
}

struct Kind {
    const char* name;
    const char* handClass;
    const char* kitClass;
};
// By hand, an object whose entry point is but a cast, and one that is a BOA as the guide writes it.
constexpr Kind kKinds[] = {
    {"itself", "HandItself", "KitItself"},
    {"BOA", "HandBoa", "KitItself"},
    {"TIE", "HandTied", "KitTied"},
    {"kept", "HandKeeper", "KitKeeper"},
    {"transient", "HandRequester", "KitRequester"},
};

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    ::setenv("LYRDictionaryPath", LYR_BENCH_DICTIONARY, 1);
    LYRThrLibraryManager::AddFolder(LYR_BENCH_LIBRARY_DIR, nullptr);
    using Hand = Subject<ByHand>;
    using Kit = Subject<OnKit>;
    for (const auto& [name, handClass, kitClass] : kKinds) {
        const std::string kind = name;
        Register<&Hand::Request, &Kit::Request>("request/" + kind, handClass, kitClass);
        Register<&Hand::Count, &Kit::Count>("count/" + kind, handClass, kitClass);
        // What is no object of its own is made by the request.
        if (kind == "itself") {
            Register<&Hand::Create, &Kit::Create>("create/" + kind, handClass, kitClass);
        } else {
            Register<&Hand::CreateAndRequest, &Kit::CreateAndRequest>("create/" + kind, handClass,
                                                                      kitClass);
        }
    }
    benchmark::RunSpecifiedBenchmarks();
}
