// The first request through a library, found in dictionary files and loaded for it, against dlopen
// and dlsym of other copies of the same library. A library is new once per process, and so is each
// copy.

#include "Bench.h"
#include "Component.h"

#include <dlfcn.h>
#include <fstream>

namespace {

constexpr int kCopies = LYR_BENCH_COPIES;
constexpr int kWarmUp = 0;  // the copy that is used before the measurement

void WriteDictionary(const std::filesystem::path& directory) {
    std::ofstream names(directory / "bench.iidts");
    std::ofstream entries(directory / "bench.dicts");
    for (int copy = 0; copy < kCopies; ++copy) {
        const std::string number = std::to_string(copy);
        names << bench::Text(bench::ids[static_cast<std::size_t>(copy)]) << " IFirst" << number
              << '\n';
        entries << "Component0 IFirst" << number << " libFirstRequest" << number << '\n';
    }
}

bool AskForInterface(LYRSysTSBaseUnknown* object, int copy) {
    void* answer = nullptr;
    object->QueryInterface(bench::ids[static_cast<std::size_t>(copy)], &answer);
    return answer != nullptr;
}

bool LoadAndFind(int copy) {
    const std::string number = std::to_string(copy);
    void* const library =
        ::dlopen(("libFirstLoad" + number + ".so").c_str(), RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) return false;
    const std::string name = "LYRSysTSCreateIFirst" + number + "Component0";
    return ::dlsym(library, name.c_str()) != nullptr;
}

/// Registers the use of the copies from `first` on, up to `last`. The warm-up reads the files.
template <typename Use>
void Register(const char* name, Use use, int first, int last) {
    const auto run = [=](benchmark::State& state) {
        bool done = use(kWarmUp);
        int copy = first;
        for (auto _ : state) done &= use(copy++);
        bench::Expect(state, done && copy == last);
    };
    bench::RegisterOnce(name, run, last - first);
}

/// Starts the program again with its libraries on the loader's path, which is read at the start.
void EnsureLibraryPath(char** argv) {
    const char* const path = std::getenv("LD_LIBRARY_PATH");
    if (path != nullptr && std::string(path) == LYR_BENCH_LIBRARY_DIR) return;
    ::setenv("LD_LIBRARY_PATH", LYR_BENCH_LIBRARY_DIR, 1);
    ::execv("/proc/self/exe", argv);
}

}  // namespace

int main(int argc, char** argv) {
    EnsureLibraryPath(argv);
    benchmark::Initialize(&argc, argv);
    const bench::TemporaryDirectory directory;
    WriteDictionary(directory.path);
    ::setenv("LYRDictionaryPath", directory.path.c_str(), 1);
    auto* const object = new bench::Component<0>(1);
    const auto ask = [=](int copy) { return AskForInterface(object, copy); };
    // In turns, as the machine may change its pace.
    for (const auto& [first, last] : {std::pair(1, kCopies / 2), std::pair(kCopies / 2, kCopies)}) {
        Register("First/dlopen + dlsym", LoadAndFind, first, last);
        Register("First/own", ask, first, last);
    }
    benchmark::RunSpecifiedBenchmarks();
}
