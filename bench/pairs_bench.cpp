// Looking up entries by class and interface name, known and unknown, in dictionaries of growing
// size, against hash maps behind a mutex. The argument is the largest size.

#include "Growth.h"
#include "LYRComponentModel.h"
#include "Maps.h"

namespace {

struct Names {
    const char* className;
    const char* interfaceName;
    const char* library;
};

/// Unknown is what a class of another set implements.
class Entries {
public:
    Entries(const std::vector<std::size_t>& numbers, bool known) {
        for (const std::size_t number : numbers) {
            const bench::Entry entry(number, known ? 0 : 1);
            _texts.Add(entry.className);
            _texts.Add(entry.interfaceName);
            _texts.Add(entry.library);
        }
    }
    Names operator[](std::size_t i) const {
        return {_texts[3 * i], _texts[3 * i + 1], _texts[3 * i + 2]};
    }

private:
    bench::Texts _texts;
};

struct OwnDictionary {
    static void Add(const Names& names) {
        LYRSysTSDictionary::AddDictionaryTS(names.className, names.interfaceName, names.library,
                                            nullptr, nullptr, nullptr, nullptr);
    }
    static const void* Find(const Names& names) {
        return LYRSysTSDictionary::QueryDictionary(names.className, names.interfaceName, 0);
    }
};

template <typename Map>
class LockedMap {
public:
    void Add(const Names& names) {
        const std::lock_guard<std::mutex> guard(_mutex);
        _map.emplace(bench::NamePair(names.className, names.interfaceName), names.library);
    }
    const void* Find(const Names& names) {
        const bench::NamePairView key(names.className, names.interfaceName);
        const std::lock_guard<std::mutex> guard(_mutex);
        const auto found = _map.find(key);
        return found != _map.end() ? &found->second : nullptr;
    }

private:
    std::mutex _mutex;
    Map _map;
};

template <typename Store>
void RegisterStore(const std::string& store, std::size_t size) {
    bench::Growth<Store, Entries>::RegisterAdd("Pair/new/" + store, size);
    bench::Growth<Store, Entries>::RegisterFind("Pair/hit/" + store, size, true);
    bench::Growth<Store, Entries>::RegisterFind("Pair/miss/" + store, size, false);
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    for (std::size_t size = 1000; size <= bench::SizeArgument(argc, argv); size *= 10) {
        RegisterStore<OwnDictionary>("own", size);
#if defined(LYR_BENCH_ABSL)
        RegisterStore<LockedMap<bench::AbslMap>>("absl", size);
#endif
        RegisterStore<LockedMap<bench::StdMap>>("std", size);
    }
    benchmark::RunSpecifiedBenchmarks();
}
