#include "../metaclass/TestClasses.h"

#include <latch>

/// Eight threads ask at once and get the same answer, which is not null.
template <typename Ask>
void Race(Ask ask) {
    std::latch start(8);
    std::vector<const void*> answers(8);
    std::vector<std::jthread> threads;
    for (const void*& answer : answers) {
        threads.emplace_back([&] { start.arrive_and_wait(), answer = ask(); });
    }
    threads.clear();
    for (const void* answer : answers) EXPECT_TRUE(answer == answers[0] && answer != nullptr);
}

TEST(Threads, InternMakeAndAddOnce) {
    for (unsigned k = 1; k <= 100; ++k) {
        const GUID id = G(k, 1);
        const std::string name = "Class" + std::to_string(k);
        Race([&] { return LYRSysTSDicoString::AddStringInDico(name.c_str()); });
        Race([&] { return LYRSysTSDicoGUID::AddGUIDInDico(&id); });
        Race([&] { return Class(name, KeptExtension); });
        Race([&] {
            Record* seen = Find(id, id);
            EXPECT_TRUE(seen == nullptr || seen->sharedLibrary != nullptr);
            return Dictionary::AddDictionaryTS(&id, &id, name.c_str(), "I", "Lib", Creator(1), 0);
        });
    }
    EXPECT_EQ(*Dictionary::_CreateCLSID(), G(101));
}

TEST(Threads, ReadTheFilesOnceAndFindTheFactory) {
    const PartsFiles files;
    auto* gadget = Impl("Gadget");
    std::atomic<int> turn = 0;
    Race([&] {
        gadget->QueryDerivationInterfaceFactory(Id(turn++ % 2));  // either may load the library
        return reinterpret_cast<void*>(gadget->QueryDerivationInterfaceFactory(Id(0)));
    });
}

TEST(Threads, ShareOneObjectUntilTheLastRelease) {
    auto* meta = Class("Kept", KeptExtension);
    for (int round = 0; round < 200; ++round) {
        auto* object = new TestObject(true, Impl("Gadget"));
        for (int i = 1; i < 8; ++i) object->AddRef();
        int tieCount = 0;
        Race([&] {
            Object* const kept = MakeTie(object, meta, &TestObject::MakeKept);
            Object* implementation = kept;
            unsigned char mustDelete = 0;
            const bool tieIsLast = Tie::Tie_AddRef(tieCount, kept) % 2 == 0;
            if (tieIsLast) object->Release();
            Tie::Tie_Release(tieCount, implementation, mustDelete);
            if (!tieIsLast) object->Release();
            return kept;
        });
        EXPECT_EQ(tieCount, 0);
        EXPECT_EQ(std::exchange(TestObject::ends, ""), "KeptGadget");
    }
}

TEST(Threads, APlainCounterDeletesOnce) {
    static std::atomic<int> deleted = 0, zeroes = 0;
    struct Counted : LYRSysTSRefCounterUnknown {
        ~Counted() override { ++deleted; }
    };
    auto* counted = new Counted;
    for (int count = 2; count <= 8; ++count) EXPECT_EQ(counted->AddRef(), count);
    Race([&] { return zeroes += counted->Release() == 0, &zeroes; });
    EXPECT_TRUE(zeroes == 1 && deleted == 1);
}
