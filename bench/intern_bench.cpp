// Interning strings and ids that are known, and that are new, in stores of growing size; strings
// against g_intern_string. The argument is the largest size.

#include "Growth.h"
#include "LYRComponentModel.h"

#if defined(LYR_BENCH_GLIB)
#include <glib.h>
#endif

namespace {

class Strings {
public:
    Strings(const std::vector<std::size_t>& numbers, bool) {
        for (const std::size_t number : numbers) _texts.Add(bench::Name(number, 4));
    }
    const char* operator[](std::size_t i) const { return _texts[i]; }

private:
    bench::Texts _texts;
};

class Ids {
public:
    Ids(const std::vector<std::size_t>& numbers, bool) {
        static const std::vector<GUID> all = bench::RandomIds(1'000'000);
        for (const std::size_t number : numbers) _ids.push_back(all[number]);
    }
    const GUID* operator[](std::size_t i) const { return &_ids[i]; }

private:
    std::vector<GUID> _ids;
};

struct OwnStrings {
    static void Add(const char* text) { LYRSysTSDicoString::AddStringInDico(text); }
    static const char* Find(const char* text) { return LYRSysTSDicoString::AddStringInDico(text); }
};

struct OwnIds {
    static void Add(const GUID* id) { LYRSysTSDicoGUID::AddGUIDInDico(id); }
    static const GUID* Find(const GUID* id) { return LYRSysTSDicoGUID::AddGUIDInDico(id); }
};

#if defined(LYR_BENCH_GLIB)
struct GlibStrings {
    static void Add(const char* text) { g_intern_string(text); }
    static const char* Find(const char* text) { return g_intern_string(text); }
};
#endif

template <typename Store, typename Questions>
void RegisterStore(const std::string& store, std::size_t size) {
    bench::Growth<Store, Questions>::RegisterAdd("Intern/new/" + store, size);
    bench::Growth<Store, Questions>::RegisterFind("Intern/hit/" + store, size, true);
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    for (std::size_t size = 1000; size <= bench::SizeArgument(argc, argv); size *= 10) {
        RegisterStore<OwnStrings, Strings>("own", size);
#if defined(LYR_BENCH_GLIB)
        RegisterStore<GlibStrings, Strings>("GLib", size);
#endif
        RegisterStore<OwnIds, Ids>("own ids", size);
    }
    benchmark::RunSpecifiedBenchmarks();
}
