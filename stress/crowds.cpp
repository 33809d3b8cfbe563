// crowds [seed [rounds]]
//
// Threads that all want one thing in the same moment, round by round (3'000 unless said
// otherwise): a new class, which must have one meta-object; and answers of factory tables that push
// each other out of one line of the cache, and must stay those of their interfaces.
#include "../metaclass/FactoryCache.h"
#include "../tests/metaclass/TestClasses.h"
#include "Must.h"

#include <barrier>
#include <random>

constexpr unsigned kThreads = 8, kClasses = 4, kIds = 4;

static LYRSysTSMetaClassImpl* asked[kClasses];
static GUID ids[kClasses][kIds];  // of each class, all in one place of the cache

static LYRSysTSInterfaceFactory FactoryOf(unsigned c, unsigned k) {
    return Creator(kIds * c + k + 1);
}

static void MakeClasses() {
    for (unsigned c = 0; c < kClasses; ++c) {
        asked[c] = Impl(("Asked" + std::to_string(c)).c_str());
        for (unsigned n = 0, k = 0; k < kIds; ++n) {
            ids[c][k] = G(n);
            if (lyr::internal::FactoryCache::PlaceOf(asked[c], ids[c][k]) != 0) continue;
            asked[c]->_AddInterfaceFactory(ids[c][k], FactoryOf(c, k));
            ++k;
        }
    }
}

/// Few ids are found in the cache more often, many are written there more often.
static void AskInOneLine(unsigned round, std::mt19937& random) {
    const unsigned count = round % 2 == 0 ? 2 : kIds;
    for (unsigned i = 0; i < 200; ++i) {
        const auto c = static_cast<unsigned>(random() % kClasses);
        const auto k = static_cast<unsigned>(random() % count);
        MUST(asked[c]->QueryDerivationInterfaceFactory(ids[c][k]) == FactoryOf(c, k));
    }
}

int main(int argc, char** argv) {
    const auto seed = static_cast<unsigned>(argc > 1 ? std::atoi(argv[1]) : 1);
    const auto rounds = static_cast<unsigned>(argc > 2 ? std::atoi(argv[2]) : 3'000);
    UseDictionaryPath("");
    MakeClasses();
    std::atomic<LYRSysTSMetaClass*> first = nullptr;
    std::barrier begin(kThreads, [&]() noexcept { first = nullptr; });
    std::vector<std::jthread> threads;
    for (unsigned t = 0; t < kThreads; ++t) {
        threads.emplace_back([&, random = std::mt19937(kThreads * seed + t)]() mutable {
            for (unsigned round = 0; round < rounds; ++round) {
                const std::string name = "New" + std::to_string(round);
                begin.arrive_and_wait();
                LYRSysTSMetaClass* known = nullptr;
                auto* const made = Class(name, ImplementationClass);
                MUST(first.compare_exchange_strong(known, made) || known == made);
                AskInOneLine(round, random);
            }
        });
    }
}
