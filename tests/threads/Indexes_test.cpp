// The tables are the truth; the indexes and the cache beside them must never say anything else.
#include "../metaclass/TestClasses.h"
#include "TableWalk.h"

#include <latch>
#include <random>
#include <thread>

constexpr int kThreads = 4;
constexpr int kNames = 3000;

std::string NameOf(unsigned number) {
    return std::string(number % 7, 'x') + std::to_string(number);
}

/// Four threads intern names and ids and register pairs in random order, each several times.
void FillAtRandom() {
    std::vector<std::jthread> threads;
    std::latch start(kThreads);
    for (unsigned t = 0; t < kThreads; ++t) {
        threads.emplace_back([&start, t] {
            std::mt19937 random(t);
            start.arrive_and_wait();
            for (int i = 0; i < 2 * kNames; ++i) {
                const auto number = static_cast<unsigned>(random() % kNames);
                const std::string name = NameOf(number);
                const GUID id = G(number % 5, static_cast<std::uint16_t>(number));
                Record* const record = Dictionary::AddDictionaryTS(&id, &id, name.c_str(), "I", "L",
                                                                   Creator(number + 1), 0);
                EXPECT_TRUE(record == nullptr || record == Find(name.c_str()));
                LYRSysTSDicoString::AddStringInDico(name.c_str());
            }
        });
    }
}

TEST(Indexes, NeverDisagreeWithTheTables) {
    FillAtRandom();
    EXPECT_GT(ExpectStoresAgree(), kNames / 2);
    ExpectEntriesAgree();
    const auto all = [](int, const auto&) {};
    EXPECT_EQ(WalkByName(all), WalkById(all));

    Dictionary::_DeleteDictionary();
    LYRSysTSDicoString::_FreeDictionary();
    LYRSysTSDicoGUID::_FreeDictionary();
    EXPECT_EQ(Find(NameOf(1).c_str()), nullptr);
    for (int i = 0; i < kNames; ++i) {
        const GUID id = G(static_cast<std::uint32_t>(i));
        LYRSysTSDicoString::AddStringInDico(NameOf(static_cast<unsigned>(i)).c_str());
        LYRSysTSDicoGUID::AddGUIDInDico(&id);
    }
    EXPECT_GT(ExpectStoresAgree(), kNames / 2);
    EXPECT_GT(WalkGUIDs(all), kNames / 2);
}

/// Ids that differ in their last bytes alone, so that a careless comparison takes one for another.
GUID IdOf(unsigned number) {
    return G(7, 2, 0, {0, 0, static_cast<std::uint8_t>(number)});
}

TEST(Indexes, TheCacheForgetsWithTheMetaObject) {
    ::setenv("LYRDictionaryPath", "", 1);
    for (unsigned round = 0; round < 20; ++round) {
        std::vector<LYRSysTSMetaClassImpl*> classes;
        const GUID clsid = G(round, 1);
        for (unsigned c = 0; c < 10; ++c) {
            classes.push_back(new LYRSysTSMetaClassImpl(&clsid, "C", nullptr));
            for (unsigned i = 0; i < 160; ++i) {
                classes[c]->_AddInterfaceFactory(IdOf(i), Creator(1 + round + 100 * (c + 10 * i)));
            }
        }
        std::vector<std::jthread> threads;
        for (unsigned t = 0; t < kThreads; ++t) {
            threads.emplace_back([&classes, round, t] {
                std::mt19937 random(t);
                for (int i = 0; i < 6000; ++i) {
                    const auto c = static_cast<unsigned>(random() % 10);
                    const auto k = static_cast<unsigned>(random() % 161);
                    EXPECT_EQ(classes[c]->QueryDerivationInterfaceFactory(IdOf(k)),
                              k == 160 ? nullptr : Creator(1 + round + 100 * (c + 10 * k)));
                }
            });
        }
        threads.clear();
        LYRSysTSMetaClassBase::Destruct();  // the next round's classes take the same addresses
    }
}
