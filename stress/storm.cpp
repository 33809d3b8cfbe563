// storm [--seconds N | --rounds N] [--threads N] [--seed N]
//
// Everything at once: threads that begin together and pick scenes at random. Each round is a
// process of its own, so that each races start-up, the reading of the files, the loading of
// libraries and the first of everything; every eighth is a long one. The first violated invariant
// is the end.
#include "Storm.h"

#include "../examples/support/Ref.h"
#include "../support/MutexGuard.h"
#include "../tests/metaclass/TestClasses.h"
#include "Tables.h"

#include <algorithm>
#include <ctime>
#include <latch>
#include <map>
#include <mutex>
#include <random>
#include <set>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

// Ends the storm, with the invariant in words, unless it holds.
#define MUST(...) Must((__VA_ARGS__), __LINE__, #__VA_ARGS__)

using Random = std::mt19937;
using First = std::atomic<const void*>;
using Turn = std::atomic<unsigned>;

constexpr unsigned kLibraries = 8, kNames = 4000, kClasses = 40, kInterfaces = 100;

static void Must(bool holds, int line, const char* invariant) {
    if (holds) return;
    ::dprintf(STDOUT_FILENO, "storm.cpp:%d: violated: %s\n", line, invariant);
    ::_exit(1);
}

/// Whether all threads get one answer, which is not null. Relaxed: it orders nothing between them.
static bool Same(First& first, const void* answer) {
    const void* known = nullptr;
    first.compare_exchange_strong(known, answer, std::memory_order_relaxed);
    return answer != nullptr && (known == nullptr || known == answer);
}

/// A number of the pool: mostly the one that the other threads are asking for too.
static unsigned Pick(Random& random, Turn& turn, unsigned pool) {
    if (random() % 4 == 0) return static_cast<unsigned>(random() % pool);
    return turn.fetch_add(1, std::memory_order_relaxed) / 8 % pool;
}

static std::string Named(const char* name, unsigned number) {
    return name + std::to_string(number);
}

/// Ids that differ in both halves.
static GUID IdOf(unsigned number, std::uint16_t kind) {
    return G(number, kind, 0, {static_cast<std::uint8_t>(number)});
}

static void Intern(Random& random) {
    static Turn turn;
    static First texts[kNames], ids[kNames];
    const unsigned k = Pick(random, turn, kNames);
    const std::string text = std::string(k % 7, 'x') + std::to_string(k);
    const GUID id = IdOf(k, 1);
    const char* const storedText = LYRSysTSDicoString::AddStringInDico(text.c_str());
    const GUID* const storedId = LYRSysTSDicoGUID::AddGUIDInDico(&id);
    MUST(Same(texts[k], storedText) && storedText == text);
    MUST(Same(ids[k], storedId) && *storedId == id);
}

static void Register(Random& random) {
    static Turn turn;
    static First records[kNames], owned[kNames];
    const unsigned k = Pick(random, turn, kNames);
    const GUID id = IdOf(k, 2), other = IdOf(k, 3);
    const std::string text = Named("Pair", k), contested = Named("Contested", k);
    const char *const name = text.c_str(), *const library = random() % 2 == 0 ? "One" : "Two";
    const Record* const seen = Find(id, id);
    MUST(!seen || (seen->creator.load() && seen->sharedLibrary));
    if (random() % 2 == 0) MUST(Add(name, "I", "libLib"));
    const auto* record = Dictionary::AddDictionaryTS(&id, &id, name, "I", "Lib", Creator(k + 1), 0);
    MUST(Same(records[k], record) && Find(name) == record && Find(id, id) == record);
    MUST(!Add(name, "I", "Other") && !Dictionary::AddDictionaryTS(id, id, Creator(k + 2), nullptr));
    MUST(record->creator == Creator(k + 1) && TextOf(record->sharedLibrary) == "Lib");

    auto mine = std::make_unique<Record>();
    if (Dictionary::AddDictionaryTS(id, other, Creator(1), mine.get())) mine.release();
    MUST(Same(owned[k], Find(id, other)));
    const Record* const open = Add(contested.c_str(), "I");
    for (int n = 0; n < 100 && !open->creator.load(); ++n) {  // for another thread to bring both
    }
    MUST(!open->creator.load() || open->sharedLibrary);
    const bool first = Add(contested.c_str(), "I", library, nullptr, nullptr, Creator(1));
    MUST(first == (TextOf(open->sharedLibrary) == library));
}

static void AskClasses(Random& random) {
    static Turn turn;
    static First classes[kClasses], derivedClasses[kClasses];
    const unsigned c = Pick(random, turn, kClasses), i = Pick(random, turn, kInterfaces);
    const std::string name = Named("Class", c), interface = Named("I", i);
    const GUID iid = IdOf(i, 4);
    const Factory factory = Creator(1 + c + 100 * i);
    auto* const base = Class(name, ImplementationClass);
    auto* const derived = Class("Derived" + name, ImplementationClass, base);
    MUST(Same(classes[c], base) && Same(derivedClasses[c], derived));
    Dictionary::AddDictionaryTS(base->GetClassId(), &iid, name.c_str(), interface.c_str(), "Lib",
                                factory, 0);
    for (auto* meta : {base, derived}) {
        MUST(Dictionary::QueryMetaObject(meta->IsA()) == meta);
        MUST(Dictionary::QueryMetaObject(*meta->GetClassId()) == meta);
        auto* const asked = meta->ToMetaClassBase();
        for (unsigned n = 0; n < kInterfaces; ++n) {  // they push each other out of the cache
            MUST(asked->QueryDerivationInterfaceFactory(iid) == factory);
            MUST(!asked->QueryDerivationInterfaceFactory(IdOf(n, 5)));
        }
    }
}

static void AskFiles(Random& random) {
    const auto k = static_cast<unsigned>(random() % kNames), n = k % kLibraries;
    MUST(LYRSysTSDicoCLSIDName::QueryDicoCLSIDNameByCLSID(G(n, 8)));
    MUST(Dictionary::QueryDictionary(Named("File", k).c_str(), "I", 1));
    MUST(Dictionary::GetInterfaceName(G(n, 4)) == Named("I4Of", n));
    MUST(!Dictionary::QueryDictionary("Absent", "I", 1));
}

static void Create(Random& random) {
    const auto n = static_cast<unsigned>(random() % kLibraries);
    void *made[2] = {}, *absent = nullptr;
    MUST(LYRSysTSCreateInstance(G(n, 8), IID_IUnknown, &made[1]) == S_OK);
    MUST(made[0] = LYRSysTSCreateExternalObject(Named("Made", n).c_str(), nullptr, nullptr));
    MUST(LYRSysTSCreateInstance(G(n, 9), IID_IUnknown, &absent) == E_FAIL);
    for (void* each : made) {
        auto* const object = static_cast<IUnknown*>(each);
        MUST(object->AddRef() == 2 && object->Release() == 1 && object->Release() == 0);
    }
}

struct Counter : LYRSysTSRefCounterUnknown {
    Life life;
};

/// An object of the classes Round and Square, which every library extends.
struct Shape : Object {
    Shape(bool safe, bool round) : Object(safe), meta(Impl(round ? "Round" : "Square")) {}
    ~Shape() override { counter->Release(); }
    LYRSysTSMetaClass* GetMetaObject() const override { return meta; }
    std::uint32_t Release() override { return TestObject::Yield(Object::Release()); }
    LYRSysTSMetaClass* const meta;
    Counter* const counter = new Counter;
    First kept[kLibraries] = {}, own = nullptr;
    Life life;
};

/// A kept extension of the program itself.
struct Own : Object {
    Own() : Object(true) {}
    static Object* Make() { return new Own; }
    LYRSysTSMetaClass* GetMetaObject() const override { return Class("Own", KeptExtension); }
    Life life;
};

static Ref<IPart> Ask(Shape& shape, Random& random) {
    const auto n = static_cast<unsigned>(random() % kLibraries);
    const bool kept = random() % 2 == 0;
    auto part = Query<IPart>(&shape, G(n, kept ? 4 : 5));
    MUST(part != nullptr);
    MUST(!kept || Same(shape.kept[n], part->Implementer()));
    MUST(part->AddRef() == 2 && part->Release() == 1);
    MUST(!Query<IUnknown>(part.get(), G(n, 9)));
    return part;
}

static void Live(Random& random) {
    auto* const shape = new Shape(random() % 2 == 0, random() % 2 == 0);
    auto part = Ask(*shape, random);
    MUST(shape->AddRef() == 3 && shape->Release() == 2);
    const bool partFirst = random() % 2 == 0;
    if (partFirst) part = nullptr;
    MUST(shape->Release() == (partFirst ? 0 : 1));
}

/// TIEs that all threads share, with what is behind them, until the last release.
static struct {
    std::mutex mutex;
    Ref<IPart> tie;
} slots[6];

static void Share(Random& random) {
    auto& [mutex, shared] = slots[random() % std::size(slots)];
    Ref<IPart> tie;
    if (random() % 4 == 0) {
        auto* const made = new Shape(true, random() % 2 == 0);
        tie = Ask(*made, random);
        made->Release();
    }
    {
        const std::lock_guard guard(mutex);
        if (tie != nullptr || shared == nullptr) {
            std::swap(tie, shared);
        } else {
            shared->AddRef();
            tie.reset(shared.get());
        }
    }
    if (tie == nullptr) return;
    auto shape = Query<Shape>(tie.get(), IID_IUnknown);
    Counter* const counter = shape->counter;
    counter->AddRef();
    auto* const own = Class("Own", KeptExtension);
    MUST(Same(shape->own, LYRSysTSBOAInternal::CreateBOA(shape.get(), own, &Own::Make)));
    const auto part = Ask(*shape, random);
    if (random() % 2 == 0) tie = nullptr;
    shape = nullptr;
    counter->Release();
}

static void HoldTheDictionary(Random& random) {
    const lyr::MutexGuard guard(*GetGlobalDicoMutex());
    for (const auto scene : {Intern, Register, AskClasses, AskFiles}) scene(random);
}

constexpr std::pair<const char*, void (*)(Random&)> kScenes[] = {
    {"intern", Intern},
    {"register", Register},
    {"ask classes", AskClasses},
    {"ask files", AskFiles},
    {"create", Create},
    {"live", Live},
    {"share", Share},
    {"hold the dictionary", HoldTheDictionary}};
using Counts = std::atomic<unsigned long>[std::size(kScenes)];

/// From top to bottom, for the thread sanitizer: it reports whoever takes two the other way.
static void TakeTheLocksInOrder() {
    const lyr::MutexGuard dico(*GetGlobalDicoMutex()), strings(*GetGlobalStringDicoMutex()),
        ids(*GetGlobalGUIDDicoMutex()), iids(*GetGlobalIIDDicoMutex()),
        clsids(*GetGlobalCLSIDDicoMutex());
}

static void CheckTheRest() {
    for (auto& [mutex, tie] : slots) {
        if (tie == nullptr) continue;
        MUST(tie->AddRef() == 2 && tie->Release() == 1);
        MUST(Query<Shape>(tie.get(), IID_IUnknown)->AddRef() == 3);
        Query<Shape>(tie.get(), IID_IUnknown)->Release();
        tie = nullptr;
    }
    MUST(living == 0);
    struct Metas : LYRSysTSMetaClassBase {
        static auto* After(LYRSysTSMetaClassBase* meta) { return meta->*(&Metas::_nextMeta); }
    };
    LYRSysTSBaseUnknown::MetaObject();  // has an id of its own, unlike the others
    std::set<std::string> names;
    for (auto* meta = sHeadMeta; meta != nullptr; meta = Metas::After(meta)) {
        MUST(names.insert(meta->IsA()).second);
    }
    MUST(Dictionary::_CreateCLSID()->Data1 == names.size());
    Walk<DicEntryLink>(kEntriesByName, [](int, const DicEntryLink& link) {
        const auto [className, interfaceName] =
            std::pair(link.info->className, link.info->interfaceName);
        MUST(Dictionary::QueryDictionary(className, interfaceName, 0) == link.info);
    });
    Walk<DicEntryLink>(kEntriesById, [](int, const DicEntryLink& link) {
        MUST(Find(*link.info->clsid, *link.info->iid) == link.info);
    });
}

/// Closes the dictionary beside a thread that goes on with it.
static void End() {
    std::thread late([] {
        for (unsigned i = 0; i < 2000; ++i) {
            Add(Named("Late", i).c_str(), "I");
            Dictionary::AddDictionaryTS(G(1), IdOf(i, 1), Creator(1), nullptr);
        }
    });
    while (Find("Late9") == nullptr) std::this_thread::yield();
    Dictionary::_DeleteDictionary();
    late.join();
    const auto nothing = [](int, const DicEntryLink&) {};
    MUST(Walk<DicEntryLink>(kEntriesByName, nothing) == 0 &&
         Walk<DicEntryLink>(kEntriesById, nothing) == 0);
    LYRSysTSMetaClassBase::Destruct();
    LYRSysTSDicoIIDName::_FreeDictionary();
    LYRSysTSDicoCLSIDName::_FreeDictionary();
    LYRSysTSDicoString::_FreeDictionary();
    LYRSysTSDicoGUID::_FreeDictionary();
}

static void Round(unsigned seed, unsigned threadCount, int scenes, Counts& counts) {
    ::alarm(120);                           // kills a round that hangs
    stderr = std::fopen("/dev/null", "w");  // the words of all the refusals
    TakeTheLocksInOrder();
    std::latch start(threadCount);
    std::vector<std::jthread> threads;
    for (unsigned t = 0; t < threadCount; ++t) {
        threads.emplace_back([&, random = Random(seed + t)]() mutable {
            start.arrive_and_wait();
            for (int i = 0; i < scenes; ++i) {
                const std::size_t scene = random() % std::size(kScenes);
                kScenes[scene].second(random);
                counts[scene].fetch_add(1, std::memory_order_relaxed);
            }
        });
    }
    threads.clear();
    CheckTheRest();
    End();
}

/// What each round reads: lines for each library, which a % stands for, and many more.
struct Files : TempDirectory {
    Files() {
        const std::string id = "{0000000%-000", rest = "-0000-0000-000000000000} ";
        const std::string library = " " STORM_LIBRARY "%";
        const std::pair<std::string, std::string> lines[] = {
            {"%.iidts", id + "4" + rest + "I4Of%\n" + id + "5" + rest + "I5Of%\n"},
            {"%.clsidts", id + "8" + rest + "Storm%" + library},
            {"0%.dicts", "Made% CreateInterface" + library},
            {"1%.dicts", "Round I4Of%" + library +
                             " EXTENDED_BY Part4Of%\n"
                             "Round I5Of%" +
                             library + " EXTENDED_BY Part5Of%\n"},
            {"2%.dicts", "Square I4Of%" + library +
                             " EXTENDED_BY Part4Of%\n"
                             "Square I5Of%" +
                             library + " EXTENDED_BY Part5Of%\n"}};
        for (char n = '0'; n < '0' + static_cast<char>(kLibraries); ++n) {
            for (auto [name, text] : std::vector(std::begin(lines), std::end(lines))) {
                for (std::string* each : {&name, &text}) std::ranges::replace(*each, '%', n);
                Write(name, text);
            }
        }
        std::string many;
        for (unsigned k = 0; k < kNames; ++k) many += Named("File", k) + " I Lib\n";
        Write("many.dicts", many);
        UseDictionaryPath(path);
    }
};

int main(int argc, char** argv) {
    std::map<std::string, unsigned> options{{"--rounds", 8}, {"--threads", 8}, {"--seed", 1}};
    for (int i = 1; i + 1 < argc; i += 2) {
        options[argv[i]] = static_cast<unsigned>(std::strtoul(argv[i + 1], nullptr, 10));
    }
    const Files files;
    auto& counts = *static_cast<Counts*>(
        ::mmap(nullptr, sizeof(Counts), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
    const unsigned seconds = options["--seconds"], threads = options["--threads"];
    const std::time_t end = std::time(nullptr) + seconds;
    unsigned round = 0;
    for (; seconds != 0 ? std::time(nullptr) < end : round < options["--rounds"]; ++round) {
        const pid_t child = ::fork();
        if (child == 0) {
            const int scenes = round % 8 == 7 ? 10000 : 400;
            Round(options["--seed"] + threads * round, threads, scenes, counts);
            std::exit(0);
        }
        int status = 0;
        if (::waitpid(child, &status, 0) == child && status == 0) continue;
        std::printf("storm: round %u failed, exit code %d, signal %d\n", round, WEXITSTATUS(status),
                    WTERMSIG(status));
        return 1;
    }
    std::printf("%12u rounds\n", round);
    for (std::size_t s = 0; s < std::size(kScenes); ++s) {
        std::printf("%12lu %s\n", counts[s].load(), kScenes[s].first);
    }
    return 0;
}
