#pragma once

#include "Bench.h"

#include <chrono>
#include <cstdio>

namespace bench {

/// What makes a program measure something by itself and tell the seconds, instead of all it has.
constexpr const char* kMeasure = "--measure";

/// The seconds that this program tells when it is started anew with the arguments behind kMeasure;
/// negative when it fails. For what a process does once: its tables are empty, nothing is loaded.
inline double MeasureAlone(const std::string& arguments) {
    const std::string program = std::filesystem::read_symlink("/proc/self/exe");
    const std::string command = "exec '" + program + "' " + kMeasure + ' ' + arguments;
    std::FILE* const output = ::popen(command.c_str(), "re");
    if (output == nullptr) return -1;
    double seconds = -1;
    const bool told = std::fscanf(output, "%lf", &seconds) == 1;
    return ::pclose(output) == 0 && told ? seconds : -1;
}

/// Registers what a process of its own measures, of `each` pieces of work.
inline void RegisterAlone(const std::string& name, const std::string& arguments,
                          std::size_t each = 1) {
    const auto run = [=](benchmark::State& state) {
        for (auto _ : state) {
            const double seconds = MeasureAlone(arguments);
            Expect(state, seconds >= 0);
            state.SetIterationTime(seconds);
        }
        CountEach(state, each);
    };
    benchmark::RegisterBenchmark(name.c_str(), run)->UseManualTime()->Iterations(1);
}

/// In the process of its own: tells the seconds, unless it has not done what it measures. The
/// result of main.
inline int TellSeconds(double seconds, bool done) {
    if (!done) return 1;
    std::printf("%.9f\n", seconds);
    return 0;
}

/// The seconds that the work takes.
template <typename Work>
double Seconds(const Work& work) {
    using Clock = std::chrono::steady_clock;
    const Clock::time_point begin = Clock::now();
    work();
    return std::chrono::duration<double>(Clock::now() - begin).count();
}

}  // namespace bench
