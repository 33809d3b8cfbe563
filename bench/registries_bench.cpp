// The registries of interface ids and of class ids as they grow: what another line of ".iidts" and
// of ".clsidts" costs, given to the reader in words, and looking up an id, known and unknown;
// against hash maps. The argument is the largest size.

#include "Growth.h"
#include "HandMade.h"
#include "LYRComponentModel.h"

#include <cstring>

namespace {

/// Of so many entries, and as many more that no registry has.
constexpr std::size_t kMostEntries = 400'000;

enum class Kind { kInterfaces, kClasses };

struct Line {
    const char* id;
    const char* name;
    const char* library;
    const GUID& guid;
};

/// A thousand classes share a library. Half of all ids are those that no registry gets to know.
template <Kind kind>
class Lines {
public:
    Lines(const std::vector<std::size_t>& numbers, bool known) {
        static const std::vector<GUID> all =
            bench::RandomIds(2 * kMostEntries, std::mt19937(static_cast<unsigned>(kind) + 1));
        for (const std::size_t number : numbers) {
            const GUID& id = all[known ? number : kMostEntries + number];
            _ids.push_back(id);
            _texts.Add(bench::Text(id));
            _texts.Add(bench::Name(number, 4, kind == Kind::kInterfaces ? "I" : ""));
            _texts.Add(bench::Name(number / 1000, 3, "lib"));
        }
    }
    Line operator[](std::size_t i) const {
        return {_texts[3 * i], _texts[3 * i + 1], _texts[3 * i + 2], _ids[i]};
    }

private:
    std::vector<GUID> _ids;
    bench::Texts _texts;
};

/// The words of a line, as it has been read from a file.
struct Words {
    explicit Words(const Line& line) {
        char* end = _chars;
        std::size_t count = 0;
        for (const char* const word : {line.id, line.name, line.library}) {
            words[count++] = end;
            end = ::stpcpy(end, word) + 1;
        }
    }

    char* words[3] = {};

private:
    char _chars[256];
};

struct OwnInterfaces {
    static void Add(const Line& line) {
        LYRSysTSIidReader().PutInfo(Words(line).words, 2, "bench.iidts", 1);
    }
    static const void* Find(const Line& line) {
        return LYRSysTSDicoIIDName::QueryDicoIIDNameByIID(line.guid);
    }
};

struct OwnClasses {
    static void Add(const Line& line) {
        LYRSysTSClsidReader().PutInfo(Words(line).words, 3, "bench.clsidts", 1);
    }
    static const void* Find(const Line& line) {
        return LYRSysTSDicoCLSIDName::QueryDicoCLSIDNameByCLSID(line.guid);
    }
};

struct MapOfInterfaces {
    void Add(const Line& line) { map.AddInterface(line.id, line.name); }
    const void* Find(const Line& line) { return map.FindInterface(line.guid); }
    bench::HandMade map;
};

struct MapOfClasses {
    void Add(const Line& line) { map.AddClass(line.id, line.name, line.library); }
    const void* Find(const Line& line) { return map.FindClass(line.guid); }
    bench::HandMade map;
};

template <typename Store, Kind kind>
void RegisterStore(const std::string& store, std::size_t size) {
    using Growth = bench::Growth<Store, Lines<kind>>;
    const std::string registry = kind == Kind::kInterfaces ? "Iid/" : "Clsid/";
    // While the number doubles, whatever grows along with it grows once.
    Growth::RegisterAdd(registry + "first half/" + store, size / 2);
    Growth::RegisterAdd(registry + "line/" + store, size);
    Growth::RegisterFind(registry + "hit/" + store, size, true);
    Growth::RegisterFind(registry + "miss/" + store, size, false);
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    // No file is to be read at the first look-up.
    ::setenv("LYRDictionaryPath", "", 1);
    for (const std::size_t size : {std::size_t{10'000}, kMostEntries}) {
        if (size > bench::SizeArgument(argc, argv)) break;
        RegisterStore<OwnInterfaces, Kind::kInterfaces>("own", size);
        RegisterStore<MapOfInterfaces, Kind::kInterfaces>("std", size);
        RegisterStore<OwnClasses, Kind::kClasses>("own", size);
        RegisterStore<MapOfClasses, Kind::kClasses>("std", size);
    }
    benchmark::RunSpecifiedBenchmarks();
}
