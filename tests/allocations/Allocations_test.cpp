// Every allocation of every operation fails in turn: the first, the second, and so on until the
// operation ends before its turn comes. Each time in a process of its own, since the tables are
// filled once, and is asked: was it the defined refusal, with everything as before, or the whole
// result all the same; is every lock free; do the tables agree with their indexes; does the same
// request, made again with memory, leave what it leaves when nothing ever failed?
#include "../metaclass/TestClasses.h"
#include "FailingAllocations.h"
#include "TableWalk.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

/// Of the leak sanitizer, where there is one.
extern "C" [[gnu::weak]] int __lsan_do_recoverable_leak_check();

using Address = std::intptr_t;
using Loader = LYRThrLibraryManager;
using Strings = LYRSysTSDicoString;

// What else may come of a request.
constexpr unsigned kPlain = 0;
constexpr unsigned kSays = 1;    // a refusal is said on standard error
constexpr unsigned kThrows = 2;  // the refusal is std::bad_alloc
constexpr unsigned kPartly = 4;  // what was done before a failure stays, and said is what failed
constexpr unsigned kLoose = 8;   // the answer may be given without being recorded

static Address result;  // of the last request

struct Row {
    const char* name;
    int least;  // as many allocations fail, or more; 0 for none at all
    unsigned kinds;
    Address (*run)();  // 0 for a refusal
    void (*prepare)() = [] {};
    bool (*isThere)() = [] { return result != 0; };
};

static void* out;
static Object *object, *target;
static LYRSysTSMetaClassImpl* meta;
static Record* record;
static std::string directory, entries;  // and of the directory, one file
static constexpr char kName[] = "AVeryLongName", kParts[] = "LyrTestParts";
static constexpr char kCreate[] = "CreateInterface";
static const GUID kId = Id(1), kIid = Id(8);

static std::string Read(const std::string& name) {
    std::ifstream stream(directory + name, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

/// What the rows share.
struct Do {
    static Address A(const void* address) { return reinterpret_cast<Address>(address); }
    static Address A(HRESULT answer) { return answer == S_OK ? 1 : 0; }
    static Address Put(LYRSysTSDictionaryReader&& reader, int count) {
        char id[] = "{A0000008-0000-0000-0000-000000000000}", name[] = "AVeryLongName";
        char* words[] = {id, name, name};
        return A(reader.PutInfo(words, count, "file", 1));
    }
    static LYRSysTSMetaClass* Make(int type, const char* extended = nullptr) {
        const auto kind = static_cast<LYRSysTSTypeOfClass>(type);
        return Dictionary::FindOrCreateMetaObject(kName, kind, &kId, nullptr, extended);
    }
    static bool Extends() {
        auto* made = Dictionary::QueryMetaObject(kName);
        auto* extension = made ? made->ToMetaClassBase()->CastToMetaExtension() : nullptr;
        return extension && extension->_IsExtensionOf(Strings::AddStringInDico("Other"));
    }
    template <int interface>
    static Address Search() {
        return reinterpret_cast<Address>(meta->QueryDerivationInterfaceFactory(Id(interface)));
    }
    static Address First() { return A(object->QueryInterface(IID_IUnknown, &out)); }
    static bool Is(const char* entryPoint) {
        return result != 0 && result == A(Loader::GetFunctionAddress(kParts, entryPoint));
    }
    static Object* New(const char* name) {
        return new (std::nothrow) TestObject(true, Class(name));
    }
    static Object* Kept() { return New("Kept"); }
    static Object* Passing() { return New("Passing"); }
    static void Nothing() {}
    static void Name() { Add(kName, "I"); }
    static void Scan() { Dictionary::EnsureInitDictionary(); }
    static void Classes() {
        Class("ILeaf", PlainClass, Class("I2", PlainClass, nullptr, 2));
        meta = Impl("Small", Impl("Gadget"));
    }
    static void ScannedClasses() { Classes(), Scan(); }
    static void Gadget() {
        Class("Kept", KeptExtension), Class("Passing", TransientExtension);
        object = new TestObject(true, meta = Impl("Gadget"));
        const auto create = [](Object* asked, unsigned char) -> IUnknown* { return asked; };
        Record* entry = Add("Gadget", "I8", "L");
        Dictionary::AddDictionaryTS(*meta->GetClassId(), kIid, create, entry);
    }
};

// Not formatted: a row is best read as one.
// clang-format off
static const Row kRows[] = {
    {"String", 3, kPlain, [] { return Do::A(Strings::AddStringInDico(kName)); }},
    {"Id", 3, kPlain, [] { return Do::A(LYRSysTSDicoGUID::AddGUIDInDico(&kIid)); }},
    {"MadeUpId", 3, kPlain, [] { return Do::A(Dictionary::_CreateCLSID()); }},
    {"InterfaceName", 9, kPlain,
     [] { return Address{LYRSysTSDicoIIDName::AddDicoIIDName(kIid, kName)}; }},
    {"ClassName", 9, kPlain,
     [] { return Do::A(LYRSysTSDicoCLSIDName::AddDicoCLSIDName(kIid, kName, "L")); }},
    {"ByName", 9, kSays, [] { return Do::A(Add(kName, "I", "L", "F", "E", Creator(1))); }},
    {"ById", 6, kSays,
     [] { return Do::A(Dictionary::AddDictionaryTS(kId, kIid, Creator(1), nullptr)); }},
    {"ByBoth", 12, kSays, [] {
         return Do::A(Dictionary::AddDictionaryTS(&kId, &kIid, kName, "I", "L", Creator(1), 0)); }},
    {"MoreByName", 1, kSays, [] { return Do::A(Add(kName, "I", "L", "F", "E")); }, Do::Name},
    {"MoreById", 3, kSays,
     [] { return Do::A(Dictionary::AddDictionaryTS(kId, kIid, Creator(1), Find(kName))); },
     Do::Name},
    {"OwnRecord", 6, kSays, [] { return Do::A(Add(kName, "I", "L", "F", "E", nullptr, record)); },
     [] { record = new Record; }},
    {"InterfaceLine", 9, kSays, [] { return Do::Put(LYRSysTSIidReader(), 2); }},
    {"ClassLine", 9, kSays, [] { return Do::Put(LYRSysTSClsidReader(), 3); }},
    {"CreationFunction", 9, kSays,
     [] { return LYRSysTSFillDictionary(kName, kCreate, Creator(1)), Address{0}; },
     Do::Nothing, [] { return Do::A(Dictionary::QueryDictionary(kName, kCreate, 0)) != 0; }},
    {"File", 20, kPartly, [] {
         LYRSysTSDicReader reader;
         const HRESULT answer = Dictionary::_ReadDictionary(entries.c_str(), &reader);
         return Do::A(answer) * Do::A(Dictionary::QueryDictionary("Gadget", "I7", 0)); }},
    {"QueryThatScans", 100, kPartly,
     [] { return Do::A(Dictionary::QueryDictionary("Thing", kCreate, 1)); }},
    {"PlainClass", 15, kThrows, [] { return Do::A(Do::Make(PlainClass)); }},
    {"Implementation", 15, kThrows, [] { return Do::A(Do::Make(ImplementationClass)); }},
    {"Extension", 15, kThrows | kPartly, [] { return Do::A(Do::Make(KeptExtension, "Other")); },
     Do::Nothing, [] { return result != 0 && Do::Extends(); }},
    {"TakenId", 6, kThrows | kPartly, [] { return Do::A(Do::Make(KeptExtension, "Other")); },
     [] { Class("A", PlainClass, nullptr, 1); },
     [] { return Do::Extends() && Read("/said") == kRefused; }},
    {"ExtensionOf", 2, kPlain,
     [] { return LYRSysTSMetaClassExt::AddExtendedComponent(Class(kName), "Other"), Address{0}; },
     [] { Do::Make(KeptExtension); }, Do::Extends},
    {"BaseConstructor", 9, kThrows,
     [] { return Do::A(new LYRSysTSMetaClassBase(&kId, kName, nullptr)); }},
    {"ImplConstructor", 9, kThrows,
     [] { return Do::A(new LYRSysTSMetaClassImpl(&kId, kName, nullptr)); }},
    {"ExtConstructor", 9, kThrows,
     [] { return Do::A(new LYRSysTSMetaClassExt(&kId, kName, nullptr, KeptExtension)); }},
    {"RememberFactory", 3, kPlain,
     [] { return Address{meta->_AddInterfaceFactory(kIid, Creator(1)) - 1}; }, Do::Classes,
     [] { return meta->_GetInterfaceFactory(kIid) == Creator(1); }},
    {"SearchLeaf", 100, kPartly | kLoose, Do::Search<2>, Do::Classes,
     [] { return Do::Is("LYRSysTSCreateILeafGadget"); }},
    {"SearchExtension", 10, kPartly | kLoose, Do::Search<0>, Do::ScannedClasses,
     [] { return Do::Is("LYRSysTSCreateI0GadgetExt"); }},
    {"SearchNothing", 10, kPartly | kLoose, Do::Search<4>, Do::ScannedClasses,
     [] { return meta->_GetInterfaceFactory(Id(4)) == &_LYRSysTSNoSuchInterface; }},
    {"QueryInterface", 100, kPartly | kLoose,
     [] { return Do::A(object->QueryInterface(kIid, &out)); }, Do::Gadget,
     [] { return result != 0 && out == object; }},
    {"FirstMetaObject", 15, kThrows, Do::First, [] { object = new Object(1); }},
    {"KeptExtension", 3, kPlain,
     [] { return Do::A(Tie::Tie_Construct(object, Class("Kept"), Do::Kept, target)); }, Do::Gadget,
     [] { return MakeTie(object, Class("Kept"), nullptr) != nullptr; }},
    {"PassingExtension", 3, kPlain, [] {
         Object* made = LYRSysTSBOAInternal::CreateBOA(object, Class("Passing"), Do::Passing);
         if (made != nullptr) object->AddRef(), made->Release();
         return Do::A(made); }, Do::Gadget},
    {"LoadLibrary", 10, kPlain, [] { return Do::A(Loader::LoadLibrary(kParts)); }},
    {"FunctionAddress", 10, kPlain,
     [] { return Do::A(Loader::GetFunctionAddress(kParts, "LYRSysTSCreateI1Gadget")); }},
    {"LastFailure", 3, kPlain, [] { return Loader::LastFailure().empty() ? Address{0} : 1; },
     [] { Loader::LoadLibrary("LyrNoSuchLibraryUnderThisName"); }},
    {"CreateInstance", 100, kPartly,
     [] { return Do::A(LYRSysTSCreateInstance(kId, GUID{}, &out)); }},
    {"CreateExternalObject", 10, kPlain,
     [] { return Do::A(LYRSysTSCreateExternalObject("Thing", nullptr, &out)); }, Do::Scan},
    {"LinksCountsNamesAndTrace", 0, kPlain, [] {
         LYRSysTSChainExtension link(nullptr), next(nullptr);
         int count = 1;
         unsigned char last = 0;
         Tie::Tie_AddRef(count, target = object), Tie::Tie_Release(count, target, last);
         const bool known = Dictionary::GetInterfaceName(Id(0)) && LYRSmartMutex(0).HoldsLock();
         DumpTSAddDicEntry(nullptr, nullptr, kName, "I", 1, nullptr, nullptr, "L");
         return Do::A(link.SetNextChainExtension(&next)) * known; },
     [] { Do::Gadget(), Do::Scan(); }},
};
// clang-format on

/// Makes the request while allocations fail. Whether its whole result is there.
static bool Request(const Row& row, const Failures& armed) {
    const std::string before = Contents(), said = Read("/said");
    bool threw = false;
    result = 0;
    failures = armed;
    try {
        result = row.run();
    } catch (const std::bad_alloc&) {
        threw = true;
    }
    failures.next = 0;
    ExpectSound(object);
    if (!threw && row.isThere()) return true;
    EXPECT_EQ(threw, (row.kinds & kThrows) != 0);
    EXPECT_EQ(result, 0);
    if ((row.kinds & kPartly) != 0) return false;
    EXPECT_EQ(Read("/said") != said, (row.kinds & kSays) != 0);
    EXPECT_EQ(Contents(), before);
    return false;
}

/// A process: 2 when allocations failed as they should, 0 when the request ended before, 1 when
/// something was wrong. What stands at its end is the measure for others if none was to fail.
static int Attempt(const Row& row, const Failures& armed, bool crowded) {
    ::alarm(30);
    ::dup2(::open((directory + "/said").c_str(), O_CREAT | O_TRUNC | O_RDWR | O_APPEND, 0600), 2);
    row.prepare();
    if (crowded) CrowdTables();
    EXPECT_FALSE(row.isThere());
    const bool isThere = Request(row, armed);
    const int failed = failures.failed;
    EXPECT_TRUE(isThere || failed > 0);
    const bool again = !isThere || (failed > 0 && (row.kinds & kPartly) != 0);
    EXPECT_TRUE(!again || Request(row, {}));
    if (armed.next == 0) std::ofstream(directory + "/left", std::ios::binary) << Contents();
    EXPECT_TRUE((row.kinds & kLoose) != 0 || Contents() == Read("/left"));
    while (object != nullptr && object->Release() != 0) continue;
    object = target = nullptr;
    EXPECT_FALSE(&__lsan_do_recoverable_leak_check && __lsan_do_recoverable_leak_check());
    std::fflush(stdout);
    if (testing::Test::HasFailure()) return 1;
    return failed > 0 ? 2 : 0;
}

static std::ostream& operator<<(std::ostream& stream, const Row& row) {
    return stream << row.name;
}

struct Allocations : testing::TestWithParam<Row> {};

TEST_P(Allocations, FailInTurn) {
    const PartsFiles files;
    directory = files.path;
    entries = files.path + "/a.dicts";
    for (const char* id : {"/1", "/3", "/5", "/6", "/7"}) {  // enough is left to scan
        std::filesystem::remove(directory + id + ".iidts");
    }
    int failed = 0;
    for (const int mode : {0, 1, 2}) {  // one fails; it and all that follow; one in crowded tables
        for (int n = 0, status = 2; status == 2 || n == 1; ++n) {
            std::fflush(stdout);
            const pid_t process = ::fork();
            if (process == 0) ::_exit(Attempt(GetParam(), {n, mode == 1, 0}, mode == 2));
            ::waitpid(process, &status, 0);
            status = WIFEXITED(status) ? WEXITSTATUS(status) : -status;
            ASSERT_EQ(status, n > 0 && status == 2 ? 2 : 0)
                << "allocation " << n << ", mode " << mode << '\n'
                << Read("/said");
            if (status == 2) ++failed;
        }
    }
    std::printf("Allocations failed: %d\n", failed);
    EXPECT_GE(failed, GetParam().least);
    EXPECT_TRUE(failed == 0 || GetParam().least != 0);
}

INSTANTIATE_TEST_SUITE_P(, Allocations, testing::ValuesIn(kRows),
                         [](const auto& row) { return row.param.name; });
