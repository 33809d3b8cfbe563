#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <mutex>

namespace lyr::internal {

/// The threads that sleep for one of some locks; where they wait is decided by the address of the
/// lock's word.
///
/// A thread that wants to sleep enters itself here, looks at the lock once more, and sleeps until
/// it is woken. An unlock frees the lock, looks whether somebody is here, and wakes one. A
/// processor may let the look of the unlock overtake its store, and then the two miss each other. A
/// fence would forbid that, at the price of a second atomic exchange in every unlock. So the rare
/// side pays: a sleep ends by itself after a millisecond, and before a longer one the kernel is
/// asked for a barrier in all threads of the process. An unlock that is before it has been seen;
/// one that is after it sees the sleeper.
///
/// It has a cache line of its own, since every unlock looks at it.
class alignas(64) Sleepers {
public:
    using Word = std::atomic<std::uint64_t>;

    static Sleepers& Of(const Word& word) {
        const auto address = reinterpret_cast<std::uintptr_t>(&word);
        return _all[(address >> 4 ^ address >> 10) % kCount];
    }

    /// What the unlock puts between its store and its look.
    static void BetweenStoreAndLook() {
#if defined(__linux__)
        std::atomic_signal_fence(std::memory_order_seq_cst);
#else
        std::atomic_thread_fence(std::memory_order_seq_cst);
#endif
    }

    /// Whether somebody may sleep for this lock.
    bool AreThere() const {
        return _first.load(std::memory_order_relaxed) != nullptr;
    }

    /// Wakes the thread that has slept longest for this lock; false when there is none.
    bool WakeOne(const Word& word);

    /// Sleeps until woken. Returns at once when `isHeld` denies that the lock is held, and may
    /// return without a reason.
    void Sleep(const Word& word, bool (*isHeld)(std::uint64_t state));

private:
    struct Sleeper;

    /// In the child of a fork, which has none of the threads that slept, and where one of them may
    /// have held a mutex of the table.
    static void ForgetAll();
    [[gnu::constructor]] static void RegisterWithFork();

    /// Waits for a moment; whether it was woken.
    static bool SleepBriefly(Sleeper& self, std::unique_lock<std::mutex>& guard);
    /// Waits for as long as it takes, after the barrier.
    static void SleepForGood(Sleeper& self, std::unique_lock<std::mutex>& guard,
                             bool (*isHeld)(std::uint64_t state));

    void Append(Sleeper& sleeper);
    template <typename Test>
    Sleeper* Remove(Test test);

    static constexpr std::size_t kCount = 64;
    static Sleepers _all[kCount];

    std::atomic<Sleeper*> _first = nullptr;
    std::mutex _mutex;  // guards the chain from _first; the unlocks' look needs no lock
};

}  // namespace lyr::internal
