// What the library's lock costs, against the two ways to build it on std::recursive_mutex: as a
// member, and in a block of its own (the only one of the two that fits into one pointer).
//
// Each figure is taken in a process of one thread, where the C library and this one take short
// cuts, and then beside a second thread.

#include "LYRSmartMutex.h"

#include <benchmark/benchmark.h>
#include <cstdint>
#include <memory>
#include <mutex>
#include <semaphore>
#include <string>
#include <thread>

namespace {

struct OwnLock {
    LYRSmartMutex mutex{0};
    void lock() LYR_NO_THREAD_SAFETY_ANALYSIS { mutex.LockF(); }
    void unlock() LYR_NO_THREAD_SAFETY_ANALYSIS { mutex.UnlockF(); }
};

struct AllocatedLock {
    std::unique_ptr<std::recursive_mutex> mutex = std::make_unique<std::recursive_mutex>();
    void lock() { mutex->lock(); }
    void unlock() { mutex->unlock(); }
};

/// No other thread. Has to be measured first: the C library never forgets that there was one.
struct Alone {
    Alone() {}  // not trivial, so that it counts as used
};

/// A thread that does nothing but exist.
class Companion {
public:
    ~Companion() { stop_.release(); }

private:
    std::binary_semaphore stop_{0};
    std::jthread thread_{[this] { stop_.acquire(); }};
};

template <typename Lock, typename Others>
void Uncontended(benchmark::State& state) {
    const Others others;
    Lock lock;
    for (auto _ : state) {
        lock.lock();
        benchmark::ClobberMemory();
        lock.unlock();
    }
}

template <typename Lock, typename Others>
void Reentrant(benchmark::State& state) {
    const Others others;
    Lock lock;
    const std::lock_guard<Lock> outer(lock);
    for (auto _ : state) {
        lock.lock();
        benchmark::ClobberMemory();
        lock.unlock();
    }
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
    for (auto _ : state) {
        const std::lock_guard<Lock> guard(shared.lock);
        benchmark::DoNotOptimize(++shared.counter);
    }
}

/// Of the size and shape of a component object, when the lock takes one pointer.
template <typename Lock>
struct Object {
    virtual ~Object() = default;
    Lock lock;
    std::uint32_t count = 1;
    void* link = nullptr;
    std::int32_t depth = 0;
};

template <typename Lock, typename Others>
void CreateAndDestroy(benchmark::State& state) {
    const Others others;
    for (auto _ : state) {
        auto object = std::make_unique<Object<Lock>>();
        benchmark::DoNotOptimize(object.get());
    }
    state.counters["bytes"] = sizeof(Object<Lock>);
}

template <typename Lock>
void RegisterContended(const char* lock) {
    benchmark::RegisterBenchmark((std::string("Contended/") + lock).c_str(), Contended<Lock>)
        ->Threads(2)
        ->Threads(4)
        ->UseRealTime();
}

template <typename Lock, typename Others>
void Register(const char* lock, const char* others) {
    const auto name = [=](const char* what) { return std::string(what) + "/" + lock + others; };
    benchmark::RegisterBenchmark(name("Uncontended").c_str(), Uncontended<Lock, Others>);
    benchmark::RegisterBenchmark(name("Reentrant").c_str(), Reentrant<Lock, Others>);
    benchmark::RegisterBenchmark(name("CreateAndDestroy").c_str(), CreateAndDestroy<Lock, Others>);
}

template <typename Others>
void RegisterAll(const char* others) {
    Register<OwnLock, Others>("own", others);
    Register<std::recursive_mutex, Others>("std member", others);
    Register<AllocatedLock, Others>("std allocated", others);
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    RegisterAll<Alone>(", alone");
    RegisterAll<Companion>(", beside a thread");
    RegisterContended<OwnLock>("own");
    RegisterContended<std::recursive_mutex>("std member");
    benchmark::RunSpecifiedBenchmarks();
}
