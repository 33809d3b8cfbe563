// Every allocation of every operation fails in turn: the first, the second, and so on until the
// operation ends before its turn comes; at first that one alone, then with all that follow, and in
// crowded tables. Each time in a process of its own, since the tables are filled once, and is
// asked: was it the defined refusal, with everything as before, or the whole result all the same;
// do the tables agree with their indexes; does the same request, made again with memory and by
// another thread, leave what it leaves when nothing ever failed?
#include "../../support/HashIndex.h"
#include "../metaclass/TestClasses.h"
#include "FailingAllocations.h"
#include "TableWalk.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

/// Of the leak sanitizer, where there is one.
extern "C" [[gnu::weak]] int __lsan_do_recoverable_leak_check();

using BOA = LYRSysTSBOAInternal;
using Loader = LYRThrLibraryManager;
using Interfaces = LYRSysTSDicoIIDName;

// What else may come of a request.
constexpr unsigned kPlain = 0;
constexpr unsigned kSays = 1;    // a refusal is said on standard error
constexpr unsigned kThrows = 2;  // the refusal is std::bad_alloc
constexpr unsigned kPartly = 4;  // what was done before a failure stays, and said is what failed
constexpr unsigned kLoose = 8;   // the answer may be given without being recorded

static const void* result;  // of the last request

struct Row {
    const char* name;
    unsigned kinds;
    const void* (*run)();  // null for a refusal
    void (*prepare)() = [] {};
    bool (*isThere)() = [] { return result != nullptr; };
};

static constexpr char kName[] = "AVeryLongName";
static const GUID kId = Id(1), kIid = Id(8);
static void* out;
static Object* object;
static LYRSysTSMetaClassImpl* meta;
static Record* record;
static std::string directory;

static std::string Read(const char* name) {
    std::ifstream stream(directory + name, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

static void Nothing() {}
/// The classes and an object to ask, and the files read.
static void Gadget() {
    Class("Kept", KeptExtension), Class("Passing", TransientExtension);
    Class("ILeaf", PlainClass, Class("I2", PlainClass, nullptr, 2));
    object = new TestObject(true, meta = Impl("Gadget"));
    Dictionary::EnsureInitDictionary();
}
static Object* Kept() {
    return new (std::nothrow) TestObject(true, Class("Kept"));
}
static Object* Passing() {
    return new (std::nothrow) TestObject(true, Class("Passing"));
}
static bool Extends() {
    auto* made = dynamic_cast<LYRSysTSMetaClassExt*>(Dictionary::QueryMetaObject(kName));
    return made && made->_IsExtensionOf(LYRSysTSDicoString::AddStringInDico("Other"));
}
static const void* Search(int interface) {
    return reinterpret_cast<void*>(meta->QueryDerivationInterfaceFactory(Id(interface)));
}
/// Once the extension has missed the class, as its search sees it.
static bool ListsDevice() {
    static bool hasMissed = false;
    hasMissed = hasMissed || failures.failed > 0;
    auto* const extension = dynamic_cast<LYRSysTSMetaClassExt*>(Class("GadgetExt"));
    return hasMissed ? Search(0) != nullptr : extension->IsExtensionOf(meta);
}
static const void* LikeName(char first) {
    std::string text(kName);
    text[0] = first;
    return LYRSysTSDicoString::AddStringInDico(text.c_str());
}
static bool Found(const char* entryPoint) {
    return result && result == Loader::GetFunctionAddress("LyrTestParts", entryPoint);
}

static const void* Put(LYRSysTSDictionaryReader&& reader, int count) {
    char id[] = "{A0000008-0000-0000-0000-000000000000}", name[] = "AVeryLongName";
    char* words[] = {id, name, name};
    return reader.PutInfo(words, count, "file", 1) == S_OK ? kName : nullptr;
}

/// A transient extension, which its last release has deleted. Counted for the object, it stays its.
static const void* Released(Object* made) {
    if (made != nullptr) object->AddRef(), made->Release();
    return made;
}

// A request, by its answer; and one that has none.
#define ASK(...) []() -> const void* { return __VA_ARGS__; }
#define DO(...) []() -> const void* { return __VA_ARGS__, nullptr; }

static const Row kRows[] = {
    {"String", kPlain, ASK(LYRSysTSDicoString::AddStringInDico(kName))},
    // Two of one chain, which is as long by then as the array beside it.
    {"StringsOfALongChain", kPlain, ASK(LikeName('A') != nullptr ? LikeName('B') : nullptr),
     [] {
         for (char first = 'Z'; first != 'Z' + 34; ++first) LikeName(first);
     }},
    {"Id", kPlain, ASK(LYRSysTSDicoGUID::AddGUIDInDico(&kIid))},
    {"MadeUpId", kPlain, ASK(Dictionary::_CreateCLSID())},
    {"InterfaceName", kPlain, ASK(Interfaces::AddDicoIIDName(kIid, kName) ? kName : nullptr)},
    {"ClassName", kPlain, ASK(LYRSysTSDicoCLSIDName::AddDicoCLSIDName(kIid, kName, "L"))},
    {"MoreByName", kSays, ASK(Add(kName, "I", "L", "F", "E")), [] { Add(kName, "I"); }},
    {"OwnRecord", kSays, ASK(Add(kName, "I", "L", "F", "E", Creator(1), record)),
     [] { record = new Record; }},
    {"ById", kSays, ASK(Dictionary::AddDictionaryTS(kId, kIid, Creator(1), nullptr))},
    {"InterfaceLine", kSays, ASK(Put(LYRSysTSIidReader(), 2))},
    {"ClassLine", kSays, ASK(Put(LYRSysTSClsidReader(), 3))},
    {"CreationFunction", kSays, DO(LYRSysTSFillDictionary(kName, "CreateInterface", Creator(1))),
     Nothing, [] { return Dictionary::QueryDictionary(kName, "CreateInterface", 0) != nullptr; }},
    {"ByBoth", kSays,
     ASK(Dictionary::AddDictionaryTS(&kId, &kIid, kName, "I", "L", Creator(1), 0))},
    {"QueryThatScans", kPartly, ASK(Dictionary::QueryDictionary("Thing", "CreateInterface", 1))},
    {"Constructor", kThrows, ASK(new LYRSysTSMetaClassExt(&kId, kName, nullptr, KeptExtension))},
    {"ExtensionOf", kPlain, DO(LYRSysTSMetaClassExt::AddExtendedComponent(Class(kName), "Other")),
     [] { Class(kName, KeptExtension); }, Extends},
    // An absence that is met before the class is listed is not remembered.
    {"ExtensionMissed", kPartly | kLoose,
     DO(LYRSysTSMetaClassExt::AddExtendedComponent(Class("GadgetExt"), "Device")),
     [] {
         Loader::LoadLibrary("LyrTestParts");
         for (const char* full : {"A", "B"}) {
             LYRSysTSMetaClassExt::AddExtendedComponent(Class("GadgetExt"), full);
         }
         Add("Device", "I0", "LyrTestParts", nullptr, "GadgetExt");
         Gadget(), meta = Impl("Device");
     },
     ListsDevice},
    {"Extension", kThrows | kPartly,
     ASK(Dictionary::FindOrCreateMetaObject(kName, KeptExtension, &kId, nullptr, "Other")), Nothing,
     Extends},
    {"TakenId", kThrows | kPartly,
     ASK(Dictionary::FindOrCreateMetaObject(kName, KeptExtension, &kId, nullptr, "Other")),
     [] { Class("Taker", PlainClass, nullptr, 1); }, Extends},
    {"RememberFactory", kPlain, DO(meta->_AddInterfaceFactory(kIid, Creator(1))), Gadget,
     [] { return meta->_GetInterfaceFactory(kIid) == Creator(1); }},
    {"SearchExtension", kPartly | kLoose, ASK(Search(0)), Gadget,
     [] { return Found("LYRSysTSCreateI0GadgetExt"); }},
    {"SearchLeaf", kPartly | kLoose, ASK(Search(2)), Gadget,
     [] { return Found("LYRSysTSCreateILeafGadget"); }},
    // Of a library that is missing, so that the loader's words name no path: with 100 characters of
    // them, glibc writes beyond its memory when an allocation fails.
    {"SearchNothing", kPartly | kLoose, ASK(Search(7)), Gadget,
     [] { return meta->_GetInterfaceFactory(Id(7)) == &_LYRSysTSNoSuchInterface; }},
    {"QueryInterface", kPartly | kLoose,
     ASK(object->QueryInterface(kIid, &out) == S_OK ? out : nullptr),
     [] {
         Gadget();
         const auto create = [](Object* asked, unsigned char) -> IUnknown* { return asked; };
         Dictionary::AddDictionaryTS(*meta->GetClassId(), kIid, create, Add("Gadget", "I8", "L"));
     }},
    {"FirstMetaObject", kThrows, ASK(object->IsA()), [] { object = new Object(1); }},
    {"KeptExtension", kPlain, ASK(MakeTie(object, Class("Kept"), Kept)), Gadget,
     [] { return MakeTie(object, Class("Kept"), nullptr) != nullptr; }},
    {"PassingExtension", kPlain, ASK(Released(BOA::CreateBOA(object, Class("Passing"), Passing))),
     Gadget},
    {"LoadLibrary", kPlain, ASK(Loader::LoadLibrary("LyrTestParts"))},
    {"FunctionAddress", kPlain,
     ASK(Loader::GetFunctionAddress("LyrTestParts", "LYRSysTSCreateI1Gadget"))},
    {"LastFailure", kPlain, ASK(Loader::LastFailure().empty() ? nullptr : kName),
     [] { Loader::LoadLibrary("LyrNoSuchLibraryUnderThisName"); }},
    {"CreateInstance", kPartly,
     ASK(LYRSysTSCreateInstance(kId, GUID{}, &out) == S_OK ? kName : nullptr)},
    {"CreateExternalObject", kPlain, ASK(LYRSysTSCreateExternalObject("Thing", nullptr, &out)),
     Gadget},
};

/// Makes the request while allocations fail. Whether its whole result is there.
static bool Request(const Row& row, const Failures& armed) {
    const std::string before = Contents(), said = Read("/said");
    bool threw = false;
    result = nullptr;
    failures = armed;
    try {
        result = row.run();
    } catch (const std::bad_alloc&) {
        threw = true;
    }
    failures.next = 0;
    ExpectStoresAgree();
    ExpectEntriesAgree();
    if (!threw && row.isThere()) return true;
    EXPECT_EQ(threw, (row.kinds & kThrows) != 0);
    EXPECT_EQ(result, nullptr);
    if ((row.kinds & kPartly) != 0) return false;
    EXPECT_EQ(Read("/said") != said, (row.kinds & kSays) != 0);
    EXPECT_EQ(Contents(), before);
    return false;
}

/// Fills an index of either kind, so that the next addition needs more room.
static void CrowdTables() {
    const auto all = [](int, const auto&) {};
    for (int i = 0; Walk<DicEntryLink>(kEntriesByName, all) < 42; ++i) {
        Add(std::to_string(i).c_str(), "J");
    }
    for (int i = 0; Walk<DicoStringNode>(kStrings, all) < 85; ++i) {
        LYRSysTSDicoString::AddStringInDico(std::to_string(i).c_str());
    }
}

/// A process: 2 when allocations failed as they should, 0 when the request ended before, 1 when
/// something was wrong. What stands at its end is the measure for others if none was to fail.
static int Attempt(const Row& row, const Failures& armed) {
    ::alarm(30);  // a lock that is still held ends it
    ::dup2(::open((directory + "/said").c_str(), O_CREAT | O_TRUNC | O_RDWR | O_APPEND, 0600), 2);
    row.prepare();
    if (armed.fromThenOn) CrowdTables();
    EXPECT_FALSE(row.isThere());
    const bool isThere = Request(row, armed);
    const int failed = failures.failed;
    EXPECT_TRUE(isThere || failed > 0);
    std::thread([&] {
        const bool again = !isThere || (failed > 0 && (row.kinds & kPartly) != 0);
        EXPECT_TRUE(!again || Request(row, {}));
        while (object != nullptr && object->Release() != 0) continue;
    }).join();
    object = nullptr;
    if (armed.next == 0) {
        std::ofstream(directory + "/left", std::ios::binary) << Contents();
        std::ofstream(directory + "/mustBeSaid", std::ios::binary) << Read("/said");
    }
    EXPECT_NE(Read("/said").find(Read("/mustBeSaid")), std::string::npos);
    EXPECT_TRUE((row.kinds & kLoose) != 0 || Contents() == Read("/left"));
    // What a failure has lost shows as a leak, what it has freed too early as a use of it.
    Dictionary::_DeleteDictionary(), LYRSysTSMetaClassBase::Destruct();
    LYRSysTSDicoIIDName::_FreeDictionary(), LYRSysTSDicoCLSIDName::_FreeDictionary();
    LYRSysTSDicoGUID::_FreeDictionary(), LYRSysTSDicoString::_FreeDictionary();
    EXPECT_FALSE(&__lsan_do_recoverable_leak_check && __lsan_do_recoverable_leak_check());
    std::fflush(stdout);
    if (testing::Test::HasFailure()) return 1;
    return failed > 0 ? 2 : 0;
}

struct Allocations : testing::TestWithParam<std::size_t> {};

TEST_P(Allocations, FailInTurn) {
    const PartsFiles files;
    directory = files.path;
    int failed = 0;
    for (const bool fromThenOn : {false, true}) {
        for (int n = 0, status = 2; status == 2 || n == 1; ++n) {
            std::fflush(stdout);
            const pid_t process = ::fork();
            if (process == 0) ::_exit(Attempt(kRows[GetParam()], {n, fromThenOn, 0}));
            ::waitpid(process, &status, 0);
            status = WIFEXITED(status) ? WEXITSTATUS(status) : -status;
            ASSERT_EQ(status, n > 0 && status == 2 ? 2 : 0)
                << "allocation " << n << (fromThenOn ? " and all that follow\n" : "\n")
                << Read("/said");
            if (status == 2) ++failed;
        }
    }
    EXPECT_GT(failed, 0);
}

INSTANTIATE_TEST_SUITE_P(, Allocations, testing::Range<std::size_t>(0, std::size(kRows)),
                         [](const auto& row) { return kRows[row.param].name; });

TEST(HashIndex, TakesMoreWhileSlotsAreFreeWhenItCannotGrow) {
    static constinit lyr::internal::HashIndex<const std::size_t, lyr::internal::Readers::kUnderLock>
        index;
    std::size_t numbers[64], count = 0;
    const auto find = [&](std::size_t number) {
        const auto is = [=](std::size_t known) { return known == number; };
        return index.Find(number << 56 | number / 40, is);
    };
    for (; index.Reserve(); ++count) {
        failures = {1, true, 0};
        numbers[count] = count;
        index.Add(count << 56 | count / 40, &numbers[count]);
    }
    failures.next = 0;
    EXPECT_EQ(count, 63U);
    for (std::size_t i = 0; i < 64; ++i) EXPECT_EQ(find(i), i < 63 ? &numbers[i] : nullptr);
}
