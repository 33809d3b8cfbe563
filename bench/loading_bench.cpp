// Reading dictionary files of 100,000 lines into the dictionary, against reading the same files
// with fgets alone. The dictionary is filled once per process, so that figure is one run; start the
// program several times for a median.

#include "LYRComponentModel.h"

#include <benchmark/benchmark.h>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

constexpr int kFiles = 100;
constexpr int kLinesPerFile = 1000;

/// A directory of dictionary files with names such as applications have; gone at the end.
class DictionaryFiles {
public:
    DictionaryFiles() {
        std::filesystem::create_directory(_directory);
        for (int file = 0; file < kFiles; ++file) {
            _paths.push_back(_directory / ("Framework" + std::to_string(file) + ".dicts"));
            std::ofstream out(_paths.back());
            for (int line = 0; line < kLinesPerFile; ++line) {
                out << "ProductFeature" << file << '_' << line / 10 << " IModelingService"
                    << line % 10 << " libProductFramework" << file << '\n';
            }
        }
    }
    ~DictionaryFiles() { std::filesystem::remove_all(_directory); }
    DictionaryFiles(const DictionaryFiles&) = delete;
    DictionaryFiles& operator=(const DictionaryFiles&) = delete;

    const std::filesystem::path& Directory() const { return _directory; }
    const std::vector<std::filesystem::path>& Paths() const { return _paths; }

private:
    std::filesystem::path _directory =
        std::filesystem::temp_directory_path() / ("lyr-loading-" + std::to_string(::getpid()));
    std::vector<std::filesystem::path> _paths;
};

const DictionaryFiles& Files() {
    static const DictionaryFiles files;
    return files;
}

void CountLines(benchmark::State& state) {
    state.counters["per line"] =
        benchmark::Counter(kFiles * kLinesPerFile, benchmark::Counter::kIsIterationInvariantRate |
                                                       benchmark::Counter::kInvert);
}

void FgetsAlone(benchmark::State& state) {
    for (auto _ : state) {
        for (const auto& path : Files().Paths()) {
            std::FILE* const file = std::fopen(path.c_str(), "r");
            char line[2048];
            while (std::fgets(line, sizeof line, file) != nullptr) benchmark::DoNotOptimize(line);
            std::fclose(file);
        }
    }
    CountLines(state);
}

void LoadDictionary(benchmark::State& state) {
    ::setenv("LYRDictionaryPath", Files().Directory().c_str(), 1);
    for (auto _ : state) LYRSysTSDictionary::EnsureInitDictionary();
    CountLines(state);
    const auto* last =
        LYRSysTSDictionary::QueryDictionary("ProductFeature99_99", "IModelingService9", 0);
    if (last == nullptr) state.SkipWithError("the files have not been read");
}

BENCHMARK(FgetsAlone)->Unit(benchmark::kMillisecond);
BENCHMARK(LoadDictionary)->Iterations(1)->Unit(benchmark::kMillisecond);

}  // namespace
