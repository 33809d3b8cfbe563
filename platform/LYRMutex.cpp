#include "LYRSmartMutex.h"

#include <climits>
#include <pthread.h>
#include <system_error>
#include <utility>

#if defined(__linux__)
#include <linux/futex.h>
#include <sys/syscall.h>
#include <unistd.h>
#endif
#if __has_include(<sys/single_threaded.h>)
#include <sys/single_threaded.h>
#define LYR_KNOWS_SINGLE_THREAD 1
#endif

#if defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define LYR_UNDER_TSAN 1
#endif
#elif defined(__SANITIZE_THREAD__)
#define LYR_UNDER_TSAN 1
#endif
#if defined(LYR_UNDER_TSAN)
#include <sanitizer/tsan_interface.h>
#endif

// One lock for everything: the process-wide tables, every meta-object and every thread-safe object.
//
// Why not std::recursive_mutex: it does not fit into one pointer, so each object would own a second
// block of memory, slower to make and destroy, and able to fail. And a block that is freed at
// process exit would still be used by threads on their way into it; here a destroyed mutex is a
// word of static memory that says so. bench/locks_bench.cpp compares the two.
//
// _state is the lock: kNoLock, kUnlocked, or kHeld with the lower part of the holder's identity and
// the bit kWaiters. _hold is the holder's own: the upper part of its identity and its nested holds;
// 0 whenever the lock changes hands. A thread that finds both its parts is the holder: only itself
// ever writes its upper part, and takes it back before it leaves.
//
// While the process has one thread, plain stores do what atomic exchanges do, at a third of the
// cost; the C library's own locks and std::shared_ptr do the same.
//
// Waiting. Whoever finds the lock held sets kWaiters and sleeps for as long as the word stays as it
// is. The last unlock clears the whole word and wakes one sleeper. That one cannot know whether
// others still sleep, so it takes the lock with kWaiters set and passes the duty on; at worst the
// last of them wakes nobody. There is no spinning: the sections are short, and a thread that spins
// takes the cache line from the holder.
//
// Destruction right after another thread's unlock is safe: after its releasing exchange UnlockF
// uses the mutex's address as the name of a futex only and never reads or writes there. A wake that
// so reaches an unrelated futex at the same address is one of the spurious wakes that every futex
// user must expect.

namespace {

constexpr std::uint32_t kWaiters = 1;
constexpr std::uint32_t kHeld = 4;
constexpr int kLowBits = 29;

constexpr int kNestingBits = 18;
constexpr std::uint32_t kNesting = (1U << kNestingBits) - 1;
constexpr std::uint32_t kHoldTaken = 1U << 31;

/// What tells the running thread from every other, in the two places where it
/// is kept.
struct Identity {
    std::uint32_t state;
    std::uint32_t hold;

    bool Holds(std::uint32_t lockState, std::uint32_t lockHold) const {
        return (lockState & ~kWaiters) == state && (lockHold & ~kNesting) == hold;
    }
};

/// The address of the thread's descriptor in units of 64 bytes. No two
/// descriptors share a unit, since each is larger; 42 bits hold it, since user
/// addresses have 48 unless a program asks the kernel for more. Unlike the
/// kernel's number of the thread, it costs no call of the system.
Identity Self() {
    const auto unit = reinterpret_cast<std::uintptr_t>(__builtin_thread_pointer()) >> 6;
    return {kHeld | static_cast<std::uint32_t>(unit << (32 - kLowBits)),
            kHoldTaken | static_cast<std::uint32_t>(unit >> kLowBits) << kNestingBits};
}

/// Whether no other thread can come in between, so that a plain store does what
/// an exchange does.
bool IsOnlyThread() {
#if defined(LYR_KNOWS_SINGLE_THREAD)
    return __libc_single_threaded != 0;
#else
    return false;
#endif
}

/// Puts `to` in the place of `state`; false, with the word as it is in `state`,
/// when that is not what stands there.
inline bool Change(std::atomic<std::uint32_t>& word, std::uint32_t& state, std::uint32_t to,
                   std::memory_order order) {
    if (!IsOnlyThread()) {
        return word.compare_exchange_strong(state, to, order, std::memory_order_relaxed);
    }
    const std::uint32_t seen = word.load(std::memory_order_relaxed);
    if (seen == state) word.store(to, std::memory_order_relaxed);
    return std::exchange(state, seen) == seen;
}

[[noreturn]] void ThrowTooDeep() {
    throw std::system_error(std::make_error_code(std::errc::resource_unavailable_try_again));
}

#if defined(__linux__)
void SleepWhile(std::atomic<std::uint32_t>& word, std::uint32_t value) {
    ::syscall(SYS_futex, &word, FUTEX_WAIT_PRIVATE, value, nullptr, nullptr, 0);
}
void WakeOne(std::atomic<std::uint32_t>& word) {
    ::syscall(SYS_futex, &word, FUTEX_WAKE_PRIVATE, 1, nullptr, nullptr, 0);
}
void WakeAll(std::atomic<std::uint32_t>& word) {
    ::syscall(SYS_futex, &word, FUTEX_WAKE_PRIVATE, INT_MAX, nullptr, nullptr, 0);
}
#else
void SleepWhile(std::atomic<std::uint32_t>& word, std::uint32_t value) {
    word.wait(value);
}
void WakeOne(std::atomic<std::uint32_t>& word) {
    word.notify_one();
}
void WakeAll(std::atomic<std::uint32_t>& word) {
    word.notify_all();
}
#endif

// What ThreadSanitizer is told, so that it sees a re-entrant mutex instead of a
// few atomics and reports locks taken in opposite orders. Between a "before"
// and its "after" it looks away.
#if defined(LYR_UNDER_TSAN)
constexpr bool kAnnotated = true;
void BeforeLock(void* mutex) {
    __tsan_mutex_pre_lock(mutex, __tsan_mutex_write_reentrant);
}
void AfterLock(void* mutex, bool locked) {
    const unsigned failed = locked ? 0 : __tsan_mutex_try_lock_failed;
    __tsan_mutex_post_lock(mutex, __tsan_mutex_write_reentrant | failed, 0);
}
void BeforeUnlock(void* mutex) {
    __tsan_mutex_pre_unlock(mutex, __tsan_mutex_write_reentrant);
}
void AfterUnlock(void* mutex) {
    __tsan_mutex_post_unlock(mutex, __tsan_mutex_write_reentrant);
}
void Destroyed(void* mutex) {
    __tsan_mutex_destroy(mutex, __tsan_mutex_write_reentrant);
}
#else
constexpr bool kAnnotated = false;
void BeforeLock(void*) {}
void AfterLock(void*, bool) {}
void BeforeUnlock(void*) {}
void AfterUnlock(void*) {}
void Destroyed(void*) {}
#endif

}  // namespace

static_assert(std::atomic<std::uint32_t>::is_always_lock_free);

LYRMutex::LYRMutex(bool holdsLock) noexcept : _state(holdsLock ? kUnlocked : kNoLock) {}

LYRSmartMutex::LYRSmartMutex(int withoutLock) noexcept : LYRMutex(withoutLock == 0) {}

// Out of line, and an exchange: a compiler may drop a plain store into a dying
// object, and a waiter may set kWaiters at any moment before it.
LYRMutex::~LYRMutex() {
    if (_state.load(std::memory_order_relaxed) == kNoLock) return;
    const std::uint32_t state = _state.exchange(kNoLock, std::memory_order_acq_rel);
    if ((state & kWaiters) != 0) WakeAll(_state);
    if (state == kUnlocked) Destroyed(this);
}

/// Whether the lock is held now; it is not when there is none.
inline bool LYRMutex::Acquire() {
    const Identity self = Self();
    // A lock that is free is tried at once, without a look at it before.
    std::uint32_t state = kUnlocked;
    const std::uint32_t hold = _hold.load(std::memory_order_relaxed);
    if ((hold & ~kNesting) != self.hold &&
        Change(_state, state, self.state, std::memory_order_acquire)) {
        _hold.store(self.hold, std::memory_order_relaxed);
        return true;
    }
    state = _state.load(std::memory_order_relaxed);
    if (!self.Holds(state, hold)) return AcquireSlowly(self.state, self.hold);
    if ((hold & kNesting) == kNesting) ThrowTooDeep();
    _hold.store(hold + 1, std::memory_order_relaxed);
    return true;
}

bool LYRMutex::AcquireSlowly(std::uint32_t self, std::uint32_t hold) {
    for (std::uint32_t state = _state.load(std::memory_order_relaxed);;) {
        if ((state & ~kWaiters) == kUnlocked) {
            if (!Change(_state, state, self | kWaiters, std::memory_order_acquire)) {
                continue;
            }
            _hold.store(hold, std::memory_order_relaxed);
            return true;
        }
        if ((state & ~kWaiters) == kNoLock) return false;
        // Set in any case and not only while the same thread holds the lock: whoever has found it
        // held goes to sleep instead of taking the cache line from the holder again and again.
        state = _state.fetch_or(kWaiters, std::memory_order_relaxed);
        if ((state & kHeld) != 0) {
            SleepWhile(_state, state | kWaiters);
            self |= kWaiters;
        } else if (state == kNoLock) {
            _state.store(kNoLock, std::memory_order_relaxed);
        }
        state = _state.load(std::memory_order_relaxed);
    }
}

/// Ends the last hold of the calling thread.
inline void LYRMutex::GiveBack() {
    if (IsOnlyThread()) {
        _state.store(kUnlocked, std::memory_order_relaxed);
        return;
    }
    const std::uint32_t state = _state.exchange(kUnlocked, std::memory_order_release);
    if ((state & kWaiters) != 0) WakeOne(_state);
    // Destroyed at exit while it was held: it stays so.
    if (state == kNoLock) _state.store(kNoLock, std::memory_order_relaxed);
}

void LYRMutex::LockF() LYR_NO_THREAD_SAFETY_ANALYSIS {
    if (kAnnotated && _state.load(std::memory_order_relaxed) == kNoLock) return;
    BeforeLock(this);
    AfterLock(this, Acquire());
}

void LYRMutex::UnlockF() LYR_NO_THREAD_SAFETY_ANALYSIS {
    const Identity self = Self();
    const std::uint32_t hold = _hold.load(std::memory_order_relaxed);
    const std::uint32_t state = _state.load(std::memory_order_relaxed);
    if (!self.Holds(state, hold)) return;
    BeforeUnlock(this);
    if ((hold & kNesting) != 0) {
        _hold.store(hold - 1, std::memory_order_relaxed);
    } else {
        _hold.store(0, std::memory_order_relaxed);
        GiveBack();
    }
    AfterUnlock(this);
}
