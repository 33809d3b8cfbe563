// What the library's lock costs, against the two ways to build it on std::recursive_mutex: as a
// member, and in a block of its own (the only one of the two that fits into one pointer). What it
// costs to make them is in create_bench.

#include "Bench.h"
#include "Locks.h"

#include <cstdint>

namespace {

template <typename Lock>
void LockAndUnlock(benchmark::State& state, Lock& lock) {
    bench::Repeat(state, [&] {
        lock.lock();
        benchmark::ClobberMemory();
        lock.unlock();
    });
}

template <typename Lock>
void Uncontended(benchmark::State& state) {
    Lock lock;
    LockAndUnlock(state, lock);
}

template <typename Lock>
void Reentrant(benchmark::State& state) {
    Lock lock;
    const std::lock_guard<Lock> outer(lock);
    LockAndUnlock(state, lock);
}

/// What the threads share, laid out alike for every lock: how the lock and what it guards fall on
/// cache lines decides this figure more than the lock does.
template <typename Lock>
struct alignas(64) Shared {
    Lock lock;
    std::uint64_t counter = 0;
};

template <typename Lock>
void Contended(benchmark::State& state) {
    static Shared<Lock> shared;
    bench::Repeat(state, [] {
        const std::lock_guard<Lock> guard(shared.lock);
        benchmark::DoNotOptimize(++shared.counter);
    });
}

template <typename Lock>
void RegisterLock(bench::Company company, const std::string& lock) {
    bench::Register(company, "Lock/uncontended/" + lock, Uncontended<Lock>);
    bench::Register(company, "Lock/reentrant/" + lock, Reentrant<Lock>);
    if (company == bench::Company::kNone) return;
    bench::Register(company, "Lock/contended/" + lock, Contended<Lock>, {2, 4});
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    for (const auto company : bench::kCompanies) {
        RegisterLock<bench::OwnLock>(company, "own");
        RegisterLock<std::recursive_mutex>(company, "std member");
        RegisterLock<bench::AllocatedLock>(company, "std allocated");
    }
    benchmark::RunSpecifiedBenchmarks();
}
