#include "TestClasses.h"

#include <algorithm>
#include <dlfcn.h>
#include <future>
#include <sys/resource.h>

TEST(FactoryTable, OrdersByUnsignedLittleEndianWordsAndFindsEveryAddition) {
    auto* meta = Impl("Gadget");
    GUID ids[16] = {};  // the greatest first
    for (unsigned i = 0; i < 32; ++i) {
        reinterpret_cast<unsigned char*>(&ids[i % 16])[i % 16 ^ 3] = 0x80;
        meta->_AddInterfaceFactory(ids[i % 16], nullptr);  // passed over
        meta->_AddInterfaceFactory(ids[i % 16], Creator(i % 16 + 1));
    }
    for (unsigned i = 0; i < 256; ++i) {
        const FactoryEntry a{&ids[i / 16], nullptr}, b{&ids[i % 16], nullptr};
        EXPECT_EQ(LYRSysTSCompare(&a, &b), (i / 16 < i % 16) - (i / 16 > i % 16)) << i;
        EXPECT_EQ(ids[i / 16] == ids[i % 16], i / 16 == i % 16) << i;
        EXPECT_EQ(LYRSysTSCompare(&a, nullptr) + LYRSysTSCompare(nullptr, &b), -2);
        EXPECT_EQ(meta->_GetInterfaceFactory(ids[i / 16]), Creator(i / 16 + 1)) << i;
    }
}

TEST(FactorySearch, FollowsTheFilesThroughARealLibrary) {
    const PartsFiles files;
    Class("ILeaf", PlainClass, Class("I2", PlainClass, nullptr, 2));
    Class("Plain", ImplementationClass, Class("I1"));
    auto* gadget = Impl("Gadget");
    auto* withoutId = new LYRSysTSMetaClassImpl(nullptr, "Gadget", nullptr);
    EXPECT_EQ(Dictionary::QueryMetaObject("GadgetExt"), nullptr);
    const std::string entryPoints[8] = {"I0GadgetExt", "I1Gadget", "ILeafGadget"};
    for (int i = 0; i < 8; ++i) {
        const Factory found = withoutId->QueryDerivationInterfaceFactory(Id(i));
        EXPECT_EQ(gadget->QueryDerivationInterfaceFactory(Id(i)), found) << i;
        withoutId->_AddInterfaceFactory(Id(i), Creator(1));
        EXPECT_EQ(withoutId->_GetInterfaceFactory(Id(i)), nullptr);
        auto* record = Dictionary::QueryDictionary("Gadget", ("I" + std::to_string(i)).c_str(), 0);
        EXPECT_EQ(Find(*gadget->GetClassId(), Id(i)), i < 3 ? record : nullptr) << i;
        const std::string name = "LYRSysTSCreate" + entryPoints[i];
        void* address = LYRThrLibraryManager::GetFunctionAddress("LyrTestParts", name.c_str());
        EXPECT_EQ(reinterpret_cast<void*>(found), address) << i;
    }
}

TEST(FactorySearch, RemembersAnAbsenceAlsoWhenItHasLoadedTheLibraryBesideOtherThreads) {
    const PartsFiles files;
    std::promise<void> end;
    const auto other = std::async(std::launch::async, [&] { end.get_future().wait(); });
    auto* const gadget = Impl("Gadget");
    for (const int i : {5, 4}) {
        EXPECT_EQ(gadget->QueryDerivationInterfaceFactory(Id(i)), nullptr);
        EXPECT_EQ(gadget->_GetInterfaceFactory(Id(i)), &_LYRSysTSNoSuchInterface) << i;
    }
    end.set_value();
}

TEST(FactorySearch, ClimbsToTheFirstPlainClassRemembersAllAndSaysThatNoPathIsSet) {
    ::unsetenv("LYRDictionaryPath");
    auto* middle = Impl("Middle", Class("Plain", PlainClass, Impl("Top")));
    auto* leaf = Impl("Leaf", middle);
    const auto number = [](auto factory) { return reinterpret_cast<std::intptr_t>(factory); };
    const auto answers = [&](const GUID& iid) {
        const std::string said = ErrorsOf([&] { leaf->QueryDerivationInterfaceFactory(iid); });
        const auto count = std::count(said.begin(), said.end(), '\n');
        return Numbers{count, number(leaf->QueryDerivationInterfaceFactory(iid)),
                       number(leaf->_GetInterfaceFactory(iid)),
                       number(middle->_GetInterfaceFactory(iid))};
    };
    const auto add = [](LYRSysTSMetaClass* meta, int iid, const char* library, unsigned creator) {
        Record* record = Add(meta->IsA(), std::to_string(iid).c_str(), library);
        Dictionary::AddDictionaryTS(*meta->GetClassId(), Id(iid), Creator(creator), record);
    };
    add(middle, 1, "Lib", 1);
    add(Impl("Top"), 2, "Lib", 2);
    add(leaf, 3, nullptr, 3);  // without a library it is no answer
    add(middle, 3, "Lib", 4);
    LYRSysTSDicoIIDName::AddDicoIIDName(Id(5), "I5");
    const auto absent = number(&_LYRSysTSNoSuchInterface);
    for (const int first : {1, 0}) {
        EXPECT_EQ(answers(Id(1)), (Numbers{first * 5, 1, 1, 1}));
        EXPECT_EQ(answers(Id(2)), (Numbers{first * 6, 0, absent, absent}));
        EXPECT_EQ(answers(Id(3)), (Numbers{first * 4, 4, 4, 4}));
        EXPECT_EQ(answers(Id(5)), (Numbers{first * 8, 0, absent, absent}));
        add(leaf, 5, "Lib", 6);  // too late
    }
    Add("Leaf", "MetaObject", "Lib");
    EXPECT_EQ(answers(CLSID_LYRSysTSMetaClass)[1], 0);
}

/// A base class that is slow: meanwhile the class learns of an interface, and is asked for it.
struct SlowBase : LYRSysTSMetaClassBase {
    using LYRSysTSMetaClassBase::LYRSysTSMetaClassBase;
    Factory QueryDerivationInterfaceFactory(const GUID& iid) override {
        Dictionary::AddDictionaryTS(*derived->GetClassId(), iid, Creator(1),
                                    Add("Gadget", "I", "Lib"));
        EXPECT_EQ(derived->QueryDerivationInterfaceFactory(iid), Creator(1));
        return nullptr;
    }
    LYRSysTSMetaClassImpl* derived = nullptr;
};

TEST(FactorySearch, ThatEndsLastAnswersWhatOthersHaveFound) {
    UseDictionaryPath("");
    auto* const base = new SlowBase(nullptr, "SlowBase", nullptr);
    base->derived = Impl("Gadget", base);
    EXPECT_EQ(base->derived->QueryDerivationInterfaceFactory(Id(1)), Creator(1));
    for (int i = 2; i < 9; ++i) base->derived->_AddInterfaceFactory(Id(i), Creator(2));
    EXPECT_EQ(base->derived->_GetInterfaceFactory(Id(1)), Creator(1));
}

/// Has the library LyrTestHook, which knows the extension "Extra", call the function as it loads,
/// and a class to ask for I1, which "Extra" implements, and for I2, for which no library is named.
static LYRSysTSMetaClassImpl* HookedGadget(void (*hook)()) {
    UseDictionaryPath("");
    Add("Hook", "CreateInterface", nullptr, nullptr, nullptr, reinterpret_cast<Factory>(hook));
    for (const int i : {1, 2}) {
        LYRSysTSDicoIIDName::AddDicoIIDName(Id(i), ("I" + std::to_string(i)).c_str());
        Add("Gadget", ("I" + std::to_string(i)).c_str(), i == 1 ? "LyrTestHook" : nullptr, nullptr,
            "Extra");
    }
    return Impl("Gadget");
}

static void ExtendGadget() {
    LYRSysTSMetaClassExt::AddExtendedComponent(Class("Extra", KeptExtension), "Gadget");
}

TEST(FactorySearch, HoldsUpNoLoadAndRemembersNoAbsenceThatItMeetsBesideOne) {
    Class("Extra", KeptExtension);
    auto* const gadget = HookedGadget([] {  // the load waits for the request
        std::thread([] {
            auto* const derived = Impl("Derived", Impl("Gadget"));
            for (const int i : {1, 2, 1}) {
                EXPECT_EQ(derived->QueryDerivationInterfaceFactory(Id(i)), nullptr);
                EXPECT_EQ(derived->_GetInterfaceFactory(Id(i)), nullptr);
                EXPECT_EQ(Impl("Gadget")->_GetInterfaceFactory(Id(i)), nullptr);
            }
        }).join();
    });
    EXPECT_NE(LYRThrLibraryManager::LoadLibrary("LyrTestHook"), nullptr);
    ExtendGadget();
    EXPECT_NE(gadget->QueryDerivationInterfaceFactory(Id(1)), nullptr);
    EXPECT_EQ(gadget->QueryDerivationInterfaceFactory(Id(2)), nullptr);
    EXPECT_EQ(gadget->_GetInterfaceFactory(Id(2)), &_LYRSysTSNoSuchInterface);
}

static std::atomic<bool> isLoaded = false;
static std::future<bool> isLoadedForOthers;

TEST(Libraries, AreNotKnownToOthersBeforeTheirInitialisersHaveRun) {
    using Manager = LYRThrLibraryManager;
    HookedGadget([] {  // the library is loaded for itself already
        EXPECT_NE(Manager::GetFunctionAddress("LyrTestHook", "LYRSysTSCreateI1Extra"), nullptr);
        isLoadedForOthers = std::async(std::launch::async, [] {
            Manager::GetFunctionAddress("LyrTestHook", "LYRSysTSCreateI1Extra");
            return isLoaded.load();
        });
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        isLoaded = true;
    });
    Manager::LoadLibrary("LyrTestHook");
    EXPECT_TRUE(isLoadedForOthers.get());
}

TEST(FactorySearch, RemembersNothingForWantOfFileDescriptorsAndReadsTheFilesAgain) {
    const PartsFiles files;
    const auto searchWith = [](rlim_t descriptors, LYRSysTSMetaClassImpl* asked) {
        rlimit before{};
        ::getrlimit(RLIMIT_NOFILE, &before);
        const rlimit limit{std::min(descriptors, before.rlim_cur), before.rlim_max};
        ::setrlimit(RLIMIT_NOFILE, &limit);
        const Factory found = asked->QueryDerivationInterfaceFactory(Id(1));
        ::setrlimit(RLIMIT_NOFILE, &before);
        return found;
    };
    auto* const derived = Impl("Derived", Impl("Gadget"));
    auto* const other = Impl("Other", Impl("Gadget"));
    ExpectErrors("Error : scandir on " + files.path + "\n--> scandir(): Too many open files\n",
                 [&] { EXPECT_EQ(searchWith(0, Impl("Gadget")), nullptr); });
    ExpectErrors("", [&] {
        Dictionary::EnsureInitDictionary();
        EXPECT_EQ(searchWith(0, derived), nullptr);  // now the library of its base does not load
        const Factory found = searchWith(RLIM_INFINITY, derived);
        EXPECT_TRUE(found != nullptr && Impl("Gadget")->_GetInterfaceFactory(Id(1)) == found);
        // A base's answer does not take the place of its own.
        LYRSysTSMetaClassExt::AddExtendedComponent(Class("Extra", KeptExtension), "Other");
        Add("Other", "I1", "LyrTestHook", nullptr, "Extra");
        EXPECT_EQ(searchWith(0, other), found);
        EXPECT_NE(searchWith(RLIM_INFINITY, other), found);
    });
}

static std::promise<void> isMade;

TEST(FactorySearch, WaitsUntilALibraryThatTheProgramLoadsHasNamedTheClass) {
    auto* const gadget = HookedGadget([] {
        Class("Extra", KeptExtension);
        isMade.set_value();
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        ExtendGadget();
    });
    const std::jthread loader([] { dlopen("libLyrTestHook.so", RTLD_NOW); });
    isMade.get_future().wait();
    EXPECT_NE(gadget->QueryDerivationInterfaceFactory(Id(1)), nullptr);
}

TEST(FactoryCache, AnswersAsTheTableDoesAlsoAfterAnAddition) {
    UseDictionaryPath("");
    auto* const meta = Impl("Gadget");
    for (int i = 1; i < 4; ++i) EXPECT_EQ(meta->QueryDerivationInterfaceFactory(Id(1)), nullptr);
    for (int i = 1; i < 9; ++i) {  // the first factory stays, and comes before the absence
        meta->_AddInterfaceFactory(Id(1 + i / 8), Creator(static_cast<unsigned>(i)));
        EXPECT_EQ(meta->_GetInterfaceFactory(Id(1)), Creator(1));
        EXPECT_EQ(meta->QueryDerivationInterfaceFactory(Id(1)), Creator(1));
    }
}

TEST(FactoryCache, ForgetsWithTheMetaObject) {
    UseDictionaryPath("");
    for (unsigned round = 1; round < 4; ++round) {  // the classes take the addresses of the last
        LYRSysTSMetaClassImpl* classes[4];
        for (auto*& each : classes) each = new LYRSysTSMetaClassImpl(&IID_IUnknown, "C", nullptr);
        for (unsigned k = 0; k < 3 * 1600; ++k) {
            // Ids that differ in either half alone, which a careless comparison leaves out.
            const unsigned n = k % 1600 / 4;
            const GUID id = n % 2 == 0 ? IdWithEnd(n) : G(n, 2);
            const Factory factory = Creator(10 * (k % 1600) + round);
            if (k < 1600) classes[k % 4]->_AddInterfaceFactory(id, factory);
            EXPECT_EQ(classes[k % 4]->QueryDerivationInterfaceFactory(id), factory);
        }
        LYRSysTSMetaClassBase::Destruct();
    }
}
