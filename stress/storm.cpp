// storm [seed [scenes]]
//
// Everything at once: threads that begin together and pick scenes at random, each of them so many
// (400 unless said otherwise). As each start of the program races the reading of the files, the
// loading of libraries and the first of everything, it is made to be started over and over. From
// 10'000 scenes on everything has been met once, and a second time must need no more memory. The
// first violated invariant is the end.
#include "../examples/support/Ref.h"
#include "../support/MutexGuard.h"
#include "../tests/metaclass/TestClasses.h"
#include "Must.h"
#include "TableWalk.h"

#include <latch>
#include <malloc.h>
#include <mutex>
#include <random>

using Random = std::mt19937;
using First = std::atomic<const void*>;
using Turn = std::atomic<unsigned>;

constexpr unsigned kThreads = 8, kPool = 1000, kClasses = 20, kLibraries = 8;

/// Whether all threads get one answer, which is not null. Relaxed: it orders nothing between them.
static bool Same(First& first, const void* answer) {
    const void* known = nullptr;
    first.compare_exchange_strong(known, answer, std::memory_order_relaxed);
    return answer != nullptr && (known == nullptr || known == answer);
}

/// A number of the pool: mostly the one that the other threads are asking for too.
static unsigned Pick(Random& random, Turn& turn) {
    if (random() % 4 == 0) return static_cast<unsigned>(random() % kPool);
    return turn.fetch_add(1, std::memory_order_relaxed) / kThreads % kPool;
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
    static First texts[kPool], ids[kPool];
    const unsigned k = Pick(random, turn);
    const std::string text = std::string(k % 7, 'x') + std::to_string(k);
    const GUID id = IdOf(k, 1);
    const char* const storedText = LYRSysTSDicoString::AddStringInDico(text.c_str());
    const GUID* const storedId = LYRSysTSDicoGUID::AddGUIDInDico(&id);
    MUST(Same(texts[k], storedText) && storedText == text);
    MUST(Same(ids[k], storedId) && *storedId == id);
}

static void Register(Random& random) {
    static Turn turn;
    static First records[kPool], owned[kPool];
    const unsigned k = Pick(random, turn);
    const GUID id = IdOf(k, 2), other = IdOf(k, 3);
    const std::string text = Named("Pair", k);
    const char* const name = text.c_str();
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
}

static void AskClasses(Random& random) {
    static Turn turn;
    static First classes[kClasses], derivedClasses[kClasses];
    const unsigned k = Pick(random, turn), c = k % kClasses;
    const std::string name = Named("Class", c), interface = Named("I", k);
    const GUID iid = IdOf(k, 4);
    auto* const base = Class(name, ImplementationClass);
    auto* const derived = Class("Derived" + name, ImplementationClass, base);
    MUST(Same(classes[c], base) && Same(derivedClasses[c], derived));
    Dictionary::AddDictionaryTS(base->GetClassId(), &iid, name.c_str(), interface.c_str(), "Lib",
                                Creator(k + 1), 0);
    for (auto* meta : {base, derived}) {
        MUST(Dictionary::QueryMetaObject(meta->IsA()) == meta);
        MUST(Dictionary::QueryMetaObject(*meta->GetClassId()) == meta);
        auto* const asked = meta->ToMetaClassBase();
        for (unsigned n = 0; n < 100; ++n) {  // they push each other out of the cache
            MUST(asked->QueryDerivationInterfaceFactory(iid) == Creator(k + 1));
            MUST(!asked->QueryDerivationInterfaceFactory(IdOf(n, 5)));
        }
    }
}

static void AskFiles(Random& random) {
    const auto k = static_cast<unsigned>(random() % kPool), n = k % kLibraries;
    MUST(LYRSysTSDicoCLSIDName::QueryDicoCLSIDNameByCLSID(G(n, 8)));
    MUST(Dictionary::QueryDictionary(Named("File", k).c_str(), "I", 1));
    MUST(Dictionary::GetInterfaceName(G(n, 4)) == Named("I4Of", n));
    MUST(!Dictionary::QueryDictionary("Absent", "I", 1));
}

static void Create(Random& random) {
    const auto n = static_cast<unsigned>(random() % kLibraries);
    void* made = LYRSysTSCreateExternalObject(Named("Made", n).c_str(), nullptr, nullptr);
    for (const int way : {0, 1}) {
        MUST(way == 0 || LYRSysTSCreateInstance(G(n, 8), IID_IUnknown, &made) == S_OK);
        auto* const object = static_cast<IUnknown*>(made);
        MUST(object->AddRef() == 2 && object->Release() == 1 && object->Release() == 0);
    }
    MUST(LYRSysTSCreateInstance(G(n, 9), IID_IUnknown, &made) == E_FAIL);
}

/// An object of the class that every library extends.
struct Shape : Object {
    using Object::Object;
    LYRSysTSMetaClass* GetMetaObject() const override {
        static LYRSysTSMetaClass* const meta = Class("Shape", ImplementationClass);
        return meta;
    }
    std::uint32_t Release() override { return TestObject::Yield(Object::Release()); }
    First own = nullptr;
};

/// A kept extension of the program itself.
struct Own : Object {
    Own() : Object(true) {}
    static Object* Make() { return new Own; }
    LYRSysTSMetaClass* GetMetaObject() const override { return Class("Own", KeptExtension); }
};

static Ref<IUnknown> Ask(Shape& shape, Random& random) {
    const auto n = static_cast<unsigned>(random() % kLibraries);
    auto part = Query<IUnknown>(&shape, G(n, random() % 2 == 0 ? 4 : 5));
    MUST(part != nullptr && part->AddRef() == 2 && part->Release() == 1);
    MUST(!Query<IUnknown>(part.get(), G(n, 9)));
    return part;
}

static auto* const counter = new LYRSysTSRefCounterUnknown;

static void Live(Random& random) {
    for (int n = 0; n < 100; ++n) MUST(counter->AddRef() > 1 && counter->Release() > 0);
    auto* const shape = new Shape(random() % 2 == 0);
    auto part = Ask(*shape, random);
    MUST(shape->AddRef() == 3 && shape->Release() == 2);
    const bool partFirst = random() % 2 == 0;
    if (partFirst) part = nullptr;
    MUST(shape->Release() == (partFirst ? 0 : 1));
}

/// TIEs that all threads share, with what is behind them, until the last release.
static struct {
    std::mutex mutex;
    Ref<IUnknown> tie;
} slots[6];

/// The TIE of a slot, whose own one is replaced at times.
static Ref<IUnknown> Take(Random& random) {
    auto& [mutex, shared] = slots[random() % std::size(slots)];
    Ref<IUnknown> fresh;
    if (random() % 4 == 0) {
        auto* const made = new Shape(true);
        fresh = Ask(*made, random);
        made->Release();
    }
    const std::lock_guard guard(mutex);
    if (fresh != nullptr) std::swap(fresh, shared);
    if (fresh != nullptr || shared == nullptr) return fresh;
    shared->AddRef();
    return Ref<IUnknown>(shared.get());
}

static void Share(Random& random) {
    Ref<IUnknown> tie = Take(random);
    if (tie == nullptr) return;
    auto shape = Query<Shape>(tie.get(), IID_IUnknown);
    auto* const own = Class("Own", KeptExtension);
    const std::string name = Named("Class", static_cast<unsigned>(random() % kClasses));
    LYRSysTSMetaClassExt::AddExtendedComponent(own, name.c_str());
    MUST(dynamic_cast<LYRSysTSMetaClassExt*>(own)->IsExtensionOf(Class(name, ImplementationClass)));
    MUST(Same(shape->own, LYRSysTSBOAInternal::CreateBOA(shape.get(), own, &Own::Make)));
    const auto part = Ask(*shape, random);
    if (random() % 2 == 0) tie = nullptr;
    shape = nullptr;
}

static void HoldTheDictionary(Random& random) {
    const lyr::internal::MutexGuard guard(*GetGlobalDicoMutex());
    for (const auto scene : {Intern, Register, AskClasses, AskFiles}) scene(random);
}

/// From top to bottom, for the thread sanitizer: it reports whoever takes two the other way.
static void TakeTheLocksInOrder() {
    const lyr::internal::MutexGuard dico(*GetGlobalDicoMutex()),
        strings(*GetGlobalStringDicoMutex()), ids(*GetGlobalGUIDDicoMutex()),
        iids(*GetGlobalIIDDicoMutex()), clsids(*GetGlobalCLSIDDicoMutex());
}

constexpr void (*kScenes[])(Random&) = {Intern, Register, AskClasses, AskFiles,
                                        Create, Live,     Share,      HoldTheDictionary};

static void Storm(unsigned seed, unsigned scenes) {
    std::latch start(kThreads);
    std::vector<std::jthread> threads;
    for (unsigned t = 0; t < kThreads; ++t) {
        threads.emplace_back([&, random = Random(kThreads * seed + t)]() mutable {
            start.arrive_and_wait();
            for (unsigned i = 0; i < scenes; ++i) kScenes[random() % std::size(kScenes)](random);
        });
    }
    threads.clear();
    for (auto& [mutex, tie] : slots) {
        if (tie == nullptr) continue;
        MUST(tie->AddRef() == 2 && tie->Release() == 1);
        const auto shape = Query<Shape>(tie.get(), IID_IUnknown);
        MUST(shape->AddRef() == 3 && shape->Release() == 2);
        tie = nullptr;
    }
    MUST(counter->AddRef() == 2 && counter->Release() == 1);
    ExpectStoresAgree();
    ExpectEntriesAgree();
    MUST(!testing::UnitTest::GetInstance()->Failed());
}

/// Closes the dictionary beside a thread that goes on with it.
static void End() {
    auto* const shape = dynamic_cast<LYRSysTSMetaClassImpl*>(Class("Shape", ImplementationClass));
    std::thread late([=] {
        for (unsigned i = 0; i < 2000; ++i) {
            shape->_QueryFromDictionary(G(i % kLibraries, 4));
            for (auto* known : {Dictionary::QueryMetaObject("Shape"),
                                Dictionary::QueryMetaObject(*shape->GetClassId())})
                MUST(known == shape || known == nullptr);
            Add(Named("Late", i).c_str(), "I");
            Dictionary::AddDictionaryTS(G(1), IdOf(i, 1), Creator(1), nullptr);
        }
    });
    while (Find("Late9") == nullptr) std::this_thread::yield();
    Dictionary::_DeleteDictionary();
    late.join();
    const auto nothing = [](int, const DicEntryLink&) {};
    for (const auto* table : {kEntriesByName, kEntriesById})
        MUST(Walk<DicEntryLink>(table, nothing) == 0);
}

/// What the storm reads: lines for each library, and many more.
struct Files : TempDirectory {
    Files() {
        std::string ids, classes, entries;
        for (unsigned n = 0; n < kLibraries; ++n) {
            const std::string number = std::to_string(n), library = " StormLibrary" + number;
            const std::string id = "{0000000" + number + "-000", rest = "-0000-0000-000000000000} ";
            classes += id + "8" + rest + "Storm" + library + "\n";
            entries += "Made" + number + " CreateInterface" + library + "\n";
            for (const std::string type : {"4", "5"}) {
                const std::string of = type + "Of" + number;
                ids += id + type + rest + "I" + of + "\n";
                entries += "Shape I" + of + library + " EXTENDED_BY Part" + of + "\n";
            }
        }
        for (unsigned k = 0; k < kPool; ++k) entries += Named("File", k) + " I Lib\n";
        Write("storm.iidts", ids);
        Write("storm.clsidts", classes);
        Write("storm.dicts", entries);
        UseDictionaryPath(path);
    }
};

/// What the heap holds, in bytes.
static std::size_t Held() {
    const auto info = ::mallinfo2();
    return info.uordblks + info.hblkhd;
}

int main(int argc, char** argv) {
    const auto seed = static_cast<unsigned>(argc > 1 ? std::atoi(argv[1]) : 1);
    const auto scenes = static_cast<unsigned>(argc > 2 ? std::atoi(argv[2]) : 400);
    const Files files;
    stderr = std::fopen("/dev/null", "w");  // the words of all the refusals
    TakeTheLocksInOrder();
    Storm(seed, scenes);
    const std::size_t held = Held();
    if (scenes >= 10'000) Storm(seed + 1, scenes);
    MUST(Held() <= held + 16384);
    End();
}
