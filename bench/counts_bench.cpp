// Counting a reference to an object and giving it back, against std::shared_ptr and an intrusive
// count; on objects of each thread's own, and on one that all threads share.

#include "Bench.h"
#include "Component.h"

#include <atomic>
#include <memory>

namespace {

// Each makes an object, and what counts it once.

template <unsigned char threadSafe>
auto Own() {
    IUnknown* object = new bench::Component<0>(threadSafe);
    benchmark::DoNotOptimize(object);
    return [=] {
        object->AddRef();
        object->Release();
    };
}

auto SharedPointer() {
    return [object = std::make_shared<int>()] {
        auto copy = object;
        benchmark::DoNotOptimize(copy);
    };
}

auto Intrusive() {
    auto* object = new std::atomic<std::uint32_t>(1);
    benchmark::DoNotOptimize(object);
    return [=] {
        object->fetch_add(1, std::memory_order_relaxed);
        if (object->fetch_sub(1, std::memory_order_acq_rel) == 1) delete object;
    };
}

template <auto make>
void RegisterCounts(bench::Company company, const std::string& who) {
    const auto onOwn = [](benchmark::State& state) { bench::Repeat(state, make()); };
    const auto onShared = [](benchmark::State& state) {
        static const auto count = make();
        bench::Repeat(state, count);
    };
    bench::Register(company, "Count/" + who, onOwn, {1, 2, 4});
    if (company == bench::Company::kNone) return;
    bench::Register(company, "Count/one object/" + who, onShared, {2, 4});
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    for (const auto company : bench::kCompanies) {
        RegisterCounts<Own<1>>(company, "own thread-safe");
        RegisterCounts<SharedPointer>(company, "shared_ptr");
        RegisterCounts<Intrusive>(company, "intrusive");
    }
    bench::Register(bench::Company::kThreads, "Count/own without lock",
                    [](benchmark::State& state) { bench::Repeat(state, Own<0>()); });
    benchmark::RunSpecifiedBenchmarks();
}
