#pragma once

#include "LYRExport.h"
#include "LYRThreadAnnotations.h"

#include <atomic>
#include <cstdint>

/// A lock that the thread which holds it may take again, one pointer wide.
///
/// It is made through LYRSmartMutex, which decides whether it holds a lock at all. On one that
/// holds none, or that has been destroyed at process exit and lies in static memory, both
/// operations do nothing (one destroyed in the moment in which its holder nests or unlocks may go
/// on as a lock). A hold is given back by the thread that took it, once for each time it was taken.
/// A mutex may be destroyed as soon as its last user has unlocked it, even while that other thread
/// is still on its way out of UnlockF. Making and destroying one never fails.
class LYR_EXPORT LYR_CAPABILITY("mutex") LYRMutex {
public:
    LYRMutex(const LYRMutex&) = delete;
    LYRMutex& operator=(const LYRMutex&) = delete;

    /// Waits until no other thread holds the lock, then holds it once more. Destroying the mutex
    /// ends the wait, without the lock. Throws std::system_error instead of taking the 2^16th
    /// nested hold.
    void LockF() LYR_ACQUIRE();
    /// Gives one hold back; the last one lets another thread in. Does nothing in a thread that does
    /// not hold the lock.
    void UnlockF() LYR_RELEASE();

protected:
    explicit LYRMutex(bool holdsLock) noexcept;
    ~LYRMutex();

    static constexpr std::uint64_t kNoLock = 0;
    static constexpr std::uint64_t kLock = 2;  // there is one, and nobody holds it

    /// kNoLock or kLock; while it is held, kLock with the holder and its nested holds; of one that
    /// was destroyed while it was held, these without kLock.
    std::atomic<std::uint64_t> _state;

private:
    LYR_LOCAL bool AcquireSlowly(std::uint64_t held);
};
