#pragma once

#include <benchmark/benchmark.h>
#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <initializer_list>
#include <semaphore>
#include <string>
#include <sys/single_threaded.h>
#include <thread>
#include <unistd.h>

namespace bench {

/// What there is beside the threads that are measured. While a process has one thread, the C
/// library, the C++ library and this one leave out what only several threads need.
enum class Company { kNone, kThreads };

/// Both in the order of measuring: a process never forgets that it had a second thread.
constexpr Company kCompanies[] = {Company::kNone, Company::kThreads};

/// Lets there be, from now on, a thread that does nothing but exist.
inline void EnsureCompanion() {
    static std::binary_semaphore end(0);
    static const struct Companion {
        std::jthread thread{[] { end.acquire(); }};
        ~Companion() { end.release(); }
    } companion;
}
inline void StartCompanion(const benchmark::State&) {
    EnsureCompanion();
}

/// Registers `run`: without company in one thread, as "<name>/alone", else in each of the numbers
/// of threads. All times are wall times; with several threads, that per operation of any of them.
template <typename Run>
void Register(Company company, const std::string& name, Run run,
              std::initializer_list<int> threads = {1}) {
    if (company == Company::kNone) {
        const auto runAlone = [=](benchmark::State& state) {
            if (__libc_single_threaded == 0) return state.SkipWithError("it is not alone");
            run(state);
        };
        benchmark::RegisterBenchmark((name + "/alone").c_str(), runAlone)->UseRealTime();
        return;
    }
    auto* const made = benchmark::RegisterBenchmark(name.c_str(), run);
    made->UseRealTime()->Setup(StartCompanion);
    for (const int count : threads) made->Threads(count);
}

/// Registers what a process can do once only, `times` times, in one thread beside another.
template <typename Run>
void RegisterOnce(const std::string& name, Run run, int times = 1) {
    auto* const made = benchmark::RegisterBenchmark(name.c_str(), run);
    made->UseRealTime()->Setup(StartCompanion)->Iterations(times);
}

template <typename Work>
void Repeat(benchmark::State& state, const Work& work) {
    for (auto _ : state) work();
}

/// Tells the time per each of the `count` pieces of work in an iteration.
inline void CountEach(benchmark::State& state, std::size_t count) {
    using benchmark::Counter;
    state.counters["each"] = {static_cast<double>(count),
                              Counter::kIsIterationInvariantRate | Counter::kInvert};
}

/// Fails a benchmark that has not done what it measures.
inline void Expect(benchmark::State& state, bool condition) {
    if (!condition) state.SkipWithError("it has not done what it measures");
}

/// The argument of a program that measures up to a size.
inline std::size_t SizeArgument(int argc, char** argv) {
    return argc > 1 ? std::strtoul(argv[1], nullptr, 10) : 10'000;
}

/// A directory that is gone at the end.
struct TemporaryDirectory {
    TemporaryDirectory() { std::filesystem::create_directory(path); }
    ~TemporaryDirectory() { std::filesystem::remove_all(path); }
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

    const std::filesystem::path path =
        std::filesystem::temp_directory_path() / ("lyr-bench-" + std::to_string(::getpid()));
};

}  // namespace bench
