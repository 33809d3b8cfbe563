// Reading dictionary files into the dictionary, against reading them with fgets alone, and with
// fgets into a hash map. The argument is the number of lines; a process loads its files once. Also
// told is the memory that an entry takes, beside that of the same tables with nothing else.

#include "Bench.h"
#include "LYRComponentModel.h"
#include "Maps.h"
#include "Names.h"

#include <cstdio>
#include <fstream>
#include <malloc.h>
#include <set>

namespace {

/// Dictionary files of up to a thousand lines.
class DictionaryFiles {
public:
    explicit DictionaryFiles(std::size_t lines) {
        std::ofstream out;
        for (std::size_t line = 0; line < lines; ++line) {
            if (line % 1000 == 0) {
                _paths.push_back(_directory.path / (std::to_string(line) + ".dicts"));
                out = std::ofstream(_paths.back());
            }
            const bench::Entry entry(line);
            out << entry.className << ' ' << entry.interfaceName << ' ' << entry.library << '\n';
        }
    }
    const char* Directory() const { return _directory.path.c_str(); }

    template <typename Take>
    void ForEachLine(Take take) const {
        for (const auto& path : _paths) {
            std::FILE* const file = std::fopen(path.c_str(), "r");
            char line[2048];
            while (std::fgets(line, sizeof line, file) != nullptr) take(line);
            std::fclose(file);
        }
    }

private:
    bench::TemporaryDirectory _directory;
    std::vector<std::filesystem::path> _paths;
};

template <typename Map>
void AddLine(Map& map, std::string_view line) {
    const std::size_t interfaceName = line.find(' ') + 1;
    const std::size_t library = line.find(' ', interfaceName) + 1;
    map.emplace(bench::NamePair(line.substr(0, interfaceName - 1),
                                line.substr(interfaceName, library - interfaceName - 1)),
                line.substr(library, line.size() - library - 1));
}

/// For good: only the memory is of interest.
void Allocate(std::size_t size) {
    benchmark::DoNotOptimize(std::malloc(size));
}

/// What the bare tables need for so many distinct texts: a node and a place in a block for each.
void AllocateTexts(const std::set<std::string>& texts) {
    std::size_t room = 0;
    for (const std::string& text : texts) {
        Allocate(sizeof(DicoStringNode));
        if (room <= text.size()) {
            Allocate(sizeof(DicoStringBlock));
            room = sizeof DicoStringBlock::chars;
        }
        room -= text.size() + 1;
    }
}

std::set<std::string> DistinctTexts(std::size_t entries) {
    std::set<std::string> texts;
    for (std::size_t number = 0; number < entries; ++number) {
        const bench::Entry entry(number);
        texts.insert({entry.className, entry.interfaceName, entry.library.substr(3)});
    }
    return texts;
}

std::size_t HeapInUse() {
    const struct mallinfo2 info = ::mallinfo2();
    return info.uordblks + info.hblkhd;
}

/// Registers the loading of all entries, which `load` tells the number of, and the memory that each
/// takes from then on.
template <typename Load>
void Register(const char* what, std::size_t entries, Load load) {
    const auto run = [=](benchmark::State& state) {
        const std::size_t before = HeapInUse();
        std::size_t loaded = 0;
        for (auto _ : state) loaded = load();
        state.counters["bytes"] =
            static_cast<double>(HeapInUse() - before) / static_cast<double>(entries);
        bench::CountEach(state, entries);
        bench::Expect(state, loaded == entries);
    };
    bench::RegisterOnce(std::string(what) + "/" + std::to_string(entries), run);
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    const std::size_t entries = bench::SizeArgument(argc, argv);
    const DictionaryFiles files(entries);
    ::setenv("LYRDictionaryPath", files.Directory(), 1);

#if defined(LYR_BENCH_ABSL)
    using Map = bench::AbslMap;
    const char* const mapName = "Load/absl";
#else
    using Map = bench::StdMap;
    const char* const mapName = "Load/std";
#endif
    // None is freed: what one load gives back would make the next one cheaper.
    static Map maps[2];
    const auto loadMap = [&](Map& map) {
        return [&] {
            files.ForEachLine([&](const char* line) { AddLine(map, line); });
            return map.size();
        };
    };
    Register("Load/fgets", entries, [&] {
        std::size_t lines = 0;
        files.ForEachLine([&](char* line) {
            benchmark::DoNotOptimize(line);
            ++lines;
        });
        return lines;
    });
    // The map before and after, as the machine may change its pace.
    Register(mapName, entries, loadMap(maps[0]));
    Register("Load/own", entries, [=] {
        LYRSysTSDictionary::EnsureInitDictionary();
        const bench::Entry last(entries - 1);
        const bool loaded = LYRSysTSDictionary::QueryDictionary(
                                last.className.c_str(), last.interfaceName.c_str(), 0) != nullptr;
        return loaded ? entries : 0;
    });
    Register(mapName, entries, loadMap(maps[1]));
    // The same tables with nothing beside them, each piece from malloc.
    const auto allocateEach = [=](std::size_t size) {
        return [=] {
            for (std::size_t entry = 0; entry < entries; ++entry) Allocate(size);
            return entries;
        };
    };
    const std::set<std::string> texts = DistinctTexts(entries);
    Register("Memory/records", entries, allocateEach(sizeof(LYRSysTSInfoDic)));
    Register("Memory/links", entries, allocateEach(sizeof(DicEntryLink)));
    Register("Memory/texts", entries, [&] {
        AllocateTexts(texts);
        return entries;
    });
    benchmark::RunSpecifiedBenchmarks();
}
