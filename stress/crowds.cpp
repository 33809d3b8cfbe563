// crowds [seed [rounds]]
//
// Threads that all want one thing in the same moment, round by round (3'000 unless said
// otherwise): a new class, which must have one meta-object; and answers of factory tables that push
// each other out of one line of the cache, and must stay those of their interfaces.
#include "../support/GuidBytes.h"
#include "../tests/metaclass/TestClasses.h"
#include "Must.h"

#include <barrier>
#include <random>

constexpr unsigned kThreads = 8, kClasses = 4, kIds = 4;

/// Ids that fall on one line of the cache, whichever class is asked for them.
static const std::array<GUID, kIds> ids = [] {
    std::array<GUID, kIds> found{};
    for (unsigned n = 0, k = 0; n < kIds; ++k) {
        found[n] = G(k);
        if (lyr::GuidHash(found[n]) % 4096 == 0) ++n;
    }
    return found;
}();

static LYRSysTSMetaClassImpl* asked[kClasses];

static void MakeClasses() {
    for (unsigned c = 0; c < kClasses; ++c) {
        asked[c] = Impl(("Asked" + std::to_string(c)).c_str());
        for (unsigned k = 0; k < kIds; ++k) {
            asked[c]->_AddInterfaceFactory(ids[k], Creator(kIds * c + k + 1));
        }
    }
}

/// Few ids are found in the cache more often, many are written there more often.
static void AskInOneLine(unsigned round, std::mt19937& random) {
    const unsigned c = round / 2 % kClasses, count = round % 2 == 0 ? 2 : kIds;
    for (unsigned i = 0; i < 200; ++i) {
        const auto k = static_cast<unsigned>(random() % count);
        MUST(asked[c]->QueryDerivationInterfaceFactory(ids[k]) == Creator(kIds * c + k + 1));
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
