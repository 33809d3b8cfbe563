// Creating and destroying an object, against new and delete of a plain one with the same fields and
// the lock in several forms.

#include "Bench.h"
#include "Component.h"
#include "Locks.h"

namespace {

using Component = bench::Component<0>;

template <unsigned char threadSafe>
void CreateComponent() {
    IUnknown* object = new Component(threadSafe);
    benchmark::DoNotOptimize(object);
    object->Release();
}

template <typename Lock>
struct Plain {
    virtual ~Plain() = default;
    [[no_unique_address]] Lock lock;
    std::uint32_t count = 1;
    void* link = nullptr;
    std::int32_t depth = 0;
};

template <typename Lock>
void CreatePlain() {
    auto* object = new Plain<Lock>;
    benchmark::DoNotOptimize(object);
    delete object;
}

template <auto create, typename Object>
void RegisterCreation(bench::Company company, const char* name) {
    const auto run = [](benchmark::State& state) {
        bench::Repeat(state, create);
        state.counters["bytes"] = {sizeof(Object), benchmark::Counter::kAvgThreads};
    };
    bench::Register(company, name, run, {1, 2, 4});
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    using bench::NoLock, bench::OwnLock, bench::AllocatedLock;
    using StdLock = std::recursive_mutex;
    for (const auto company : bench::kCompanies) {
        RegisterCreation<CreateComponent<1>, Component>(company, "Create/own thread-safe");
        RegisterCreation<CreateComponent<0>, Component>(company, "Create/own without lock");
        RegisterCreation<CreatePlain<NoLock>, Plain<NoLock>>(company, "Create/no lock");
        RegisterCreation<CreatePlain<OwnLock>, Plain<OwnLock>>(company, "Create/own lock");
        RegisterCreation<CreatePlain<StdLock>, Plain<StdLock>>(company, "Create/std member");
        RegisterCreation<CreatePlain<AllocatedLock>, Plain<AllocatedLock>>(company,
                                                                           "Create/std allocated");
    }
    benchmark::RunSpecifiedBenchmarks();
}
