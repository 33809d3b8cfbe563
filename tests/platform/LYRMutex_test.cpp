#include "LYRSmartMutex.h"

#include <future>
#include <gtest/gtest.h>
#include <new>
#include <pthread.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

// Not checked by the compiler: nested holds, and unlocks by others, are the subject.
void Lock(LYRSmartMutex& mutex, int holds = 1) LYR_NO_THREAD_SAFETY_ANALYSIS {
    while (holds-- > 0) mutex.LockF();
}
void Unlock(LYRSmartMutex& mutex, int holds = 1) LYR_NO_THREAD_SAFETY_ANALYSIS {
    while (holds-- > 0) mutex.UnlockF();
}

/// A thread that takes the lock and gives it back. The future's destructor waits for it.
std::future<void> LockElsewhere(LYRSmartMutex& mutex) {
    return std::async(std::launch::async, [&mutex] { Lock(mutex), Unlock(mutex); });
}
bool Waits(const std::future<void>& thread) {
    return thread.wait_for(std::chrono::milliseconds(50)) == std::future_status::timeout;
}

TEST(LYRMutex, OnlyTheHoldersLastUnlockLetsTheOthersIn) {
    for (int holds = 1; holds <= 2; ++holds) {
        LYRSmartMutex mutex(0);
        Unlock(mutex);
        Lock(mutex, holds);
        const std::future<void> a = LockElsewhere(mutex), b = LockElsewhere(mutex);
        std::jthread([&] { Unlock(mutex, holds); }).join();
        Lock(mutex);
        Unlock(mutex, holds);
        EXPECT_TRUE(Waits(a) && Waits(b)) << holds;
        Unlock(mutex);
    }
}

TEST(LYRMutex, WithoutLockOrDestroyedAtExitItKeepsNobodyOut) {
    alignas(LYRSmartMutex) static unsigned char memory[sizeof(LYRSmartMutex)];
    for (const bool holdsLock : {false, true}) {
        auto* const mutex = new (memory) LYRSmartMutex(holdsLock ? 0 : 1);
        EXPECT_EQ(mutex->HoldsLock(), holdsLock);
        Lock(*mutex, 2);
        const std::future<void> a = LockElsewhere(*mutex), b = LockElsewhere(*mutex);
        EXPECT_EQ(Waits(a) && Waits(b), holdsLock);
        mutex->~LYRSmartMutex();
        EXPECT_FALSE(Waits(a) || Waits(b));
        Unlock(*mutex, 3);
        Lock(*mutex);
        EXPECT_FALSE(Waits(LockElsewhere(*mutex)));
    }
}

TEST(LYRMutex, AThreadIsNotCancelledWhileItWaits) {
    LYRSmartMutex mutex(0);
    bool gotIn = false;
    Lock(mutex);
    std::thread waiter([&] { Lock(mutex), gotIn = true, Unlock(mutex); });
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    pthread_cancel(waiter.native_handle());
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    Unlock(mutex);
    waiter.join();
    EXPECT_TRUE(gotIn);
}

TEST(LYRMutex, AnUnlockWakesASleeperOfItsOwn) {
    // So far apart, two locks share the place where threads sleep for them.
    static struct {
        LYRSmartMutex mutex{0};
        char gap[0x10000 - sizeof(LYRSmartMutex)];
    } locks[2];
    for (auto& [mutex, gap] : locks) Lock(mutex);
    const std::future<void> first = LockElsewhere(locks[0].mutex);
    EXPECT_TRUE(Waits(first));
    const std::future<void> second = LockElsewhere(locks[1].mutex);
    EXPECT_TRUE(Waits(second));
    Unlock(locks[1].mutex);
    EXPECT_TRUE(!Waits(second) && Waits(first));
    Unlock(locks[0].mutex);
}

#if !defined(__SANITIZE_THREAD__)  // it allows no threads in such a child
static LYRSmartMutex held(0);
static std::future<void> sleepers[2];

TEST(LYRMutex, AChildProcessForgetsTheSleepers) {
    Lock(held);
    const auto sleepWhileItForks = [] {
        for (auto& sleeper : sleepers) {
            sleeper = LockElsewhere(held);
            EXPECT_TRUE(Waits(sleeper));
        }
    };
    ::pthread_atfork(sleepWhileItForks, nullptr, nullptr);
    const pid_t child = ::fork();
    if (child == 0) {
        ::alarm(10);
        const std::future<void> c = LockElsewhere(held), d = LockElsewhere(held);
        const bool wait = Waits(c) && Waits(d);
        Unlock(held);
        ::_exit(wait && !Waits(c) && !Waits(d) ? 0 : 1);
    }
    Unlock(held);
    int status = 1;
    ::waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
}
#endif
