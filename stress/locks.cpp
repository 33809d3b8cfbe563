// locks [seed [rounds]]
//
// Threads that take a few locks as fast as they can, again while they hold one, and at times for so
// long that others sleep. What the locks guard is plain memory. The lock is compiled in without
// what it tells the thread sanitizer, which so sees nothing but its atomics, and whether they order
// that memory.
#include "LYRSmartMutex.h"

#include <cstdio>
#include <cstdlib>
#include <latch>
#include <random>
#include <thread>
#include <vector>

constexpr unsigned kThreads = 8;

/// Not checked by the compiler: nested holds are part of it.
struct Guarded {
    void Add(unsigned holds, bool isSlow) LYR_NO_THREAD_SAFETY_ANALYSIS {
        for (unsigned i = 0; i < holds; ++i) mutex.LockF();
        const unsigned long before = count;
        if (isSlow) std::this_thread::yield();
        count = before + 1;
        for (unsigned i = 0; i < holds; ++i) mutex.UnlockF();
    }
    LYRSmartMutex mutex{0};
    unsigned long count = 0;
};

int main(int argc, char** argv) {
    const auto seed = static_cast<unsigned>(argc > 1 ? std::atoi(argv[1]) : 1);
    const auto rounds = static_cast<unsigned>(argc > 2 ? std::atoi(argv[2]) : 20'000);
    Guarded all[4];
    std::latch start(kThreads);
    std::vector<std::jthread> threads;
    for (unsigned t = 0; t < kThreads; ++t) {
        threads.emplace_back([&, random = std::mt19937(kThreads * seed + t)]() mutable {
            start.arrive_and_wait();
            for (unsigned i = 0; i < rounds; ++i) {
                const auto choice = static_cast<unsigned>(random());
                all[choice % 4].Add(1 + choice / 4 % 2, choice / 8 % 64 == 0);
            }
        });
    }
    threads.clear();
    unsigned long count = 0;
    for (const Guarded& each : all) count += each.count;
    if (count == kThreads * rounds) return 0;
    std::printf("%lu of %u\n", count, kThreads * rounds);
    return 1;
}
