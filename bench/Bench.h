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
#include <utility>

namespace bench {

/// What there is beside a thread that is measured. While a process has one thread, the C library,
/// the C++ library and this one leave out what only several threads need; most programs have more.
enum class Company { kNone, kThreads };

/// A thread that does nothing but exist.
class Companion {
public:
    Companion() = default;
    Companion(const Companion&) = delete;
    Companion& operator=(const Companion&) = delete;
    ~Companion() { _stop.release(); }

    static void Start(const benchmark::State&) { static const Companion companion; }

private:
    std::binary_semaphore _stop{0};
    std::jthread _thread{[this] { _stop.acquire(); }};
};

/// Registers `run` as a benchmark: without company in one thread, as "<name>/alone", otherwise in
/// each number of threads. The first kind has to be registered before the second, since nobody
/// forgets that there was a second thread. All times are wall times; those of several threads are
/// told per operation of any of them.
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
    auto* const made = benchmark::RegisterBenchmark(name.c_str(), run)->UseRealTime();
    made->Setup(Companion::Start);
    for (const int count : threads) made->Threads(count);
}

/// Fails the benchmark when it has measured something else than it was to.
inline void Expect(benchmark::State& state, bool condition) {
    if (!condition) state.SkipWithError("it has not done what it measures");
}

/// The programs that grow with a size take it as their argument.
inline std::size_t SizeArgument(int argc, char** argv) {
    return argc > 1 ? std::strtoul(argv[1], nullptr, 10) : 10'000;
}

/// A directory that is gone at the end.
class TemporaryDirectory {
public:
    TemporaryDirectory() { std::filesystem::create_directory(_path); }
    ~TemporaryDirectory() { std::filesystem::remove_all(_path); }
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

    const std::filesystem::path& Path() const { return _path; }

private:
    std::filesystem::path _path =
        std::filesystem::temp_directory_path() / ("lyr-bench-" + std::to_string(::getpid()));
};

}  // namespace bench
