#include "LYRSmartMutex.h"

#include <atomic>
#include <climits>
#include <cstdint>
#include <system_error>

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
// word of static memory that says so. bench/locks_bench.cpp and create_bench.cpp compare
// the two.
//
// All of it is one word, so that a thread which looks sees one moment of the lock: 0 without a
// lock, otherwise kUnlocked, the holder, its nested holds, and whether others may be waiting. The
// price is an atomic exchange for a nested hold too.
//
// While the process has one thread, plain stores do what atomic exchanges do, at a fraction of the
// cost; the C library's own locks and std::shared_ptr do the same.
//
// Waiting. Whoever finds the lock held sets kWaiters and sleeps for as long as the lower half of
// the word stays as it is; nested holds are counted in the other half. The last unlock clears the
// whole word and wakes one sleeper. That one cannot know whether others still sleep, so it takes
// the lock with kWaiters set and passes the duty on; at worst the last of them wakes nobody. There
// is no spinning: the sections are short, and a thread that spins takes the cache line from the
// holder.
//
// Destruction right after another thread's unlock is safe: after its releasing exchange UnlockF
// uses the mutex's address as the name of a futex only (but at exit, when the mutex is static). A
// wake that so reaches an unrelated futex at the same address is one of the spurious wakes that
// every futex user must expect.

namespace {

using State = std::uint64_t;

constexpr State kWaiters = 1;
constexpr State kHolder = 0x0000'FFFF'FFFF'FFC0;
constexpr State kOneNested = 0x0001'0000'0000'0000;
constexpr State kNested = 0xFFFF'0000'0000'0000;

/// What tells the running thread from every other: the address of its descriptor, which is in a
/// register of the processor, while any other name of the thread costs a call. Descriptors are
/// larger than the 64 bytes that the mask leaves out, and user addresses have 48 bits unless a
/// program asks the kernel for more.
State Self() {
    return reinterpret_cast<std::uintptr_t>(__builtin_thread_pointer()) & kHolder;
}

/// Whether no other thread can come in between, so that a plain store does what an exchange does.
bool IsOnlyThread() {
#if defined(LYR_KNOWS_SINGLE_THREAD)
    return __libc_single_threaded != 0;
#else
    return false;
#endif
}

/// Puts `to` in the place of `from`; false, with what stands there in `from`, when that is another.
bool Change(std::atomic<State>& word, State& from, State to) {
    if (!IsOnlyThread()) {
        return word.compare_exchange_strong(from, to, std::memory_order_acquire,
                                            std::memory_order_relaxed);
    }
    const State seen = word.load(std::memory_order_relaxed);
    if (seen != from) {
        from = seen;
        return false;
    }
    word.store(to, std::memory_order_relaxed);
    return true;
}

/// Adds to the word of a lock that the calling thread holds, beside others that set kWaiters.
void AddTo(std::atomic<State>& word, State amount) {
    if (IsOnlyThread()) {
        word.store(word.load(std::memory_order_relaxed) + amount, std::memory_order_relaxed);
    } else {
        word.fetch_add(amount, std::memory_order_relaxed);
    }
}

/// Takes the lock once more for the thread that holds it.
void Nest(std::atomic<State>& word, State state) {
    if ((state & kNested) == kNested) {
        throw std::system_error(std::make_error_code(std::errc::resource_unavailable_try_again));
    }
    AddTo(word, kOneNested);
}

/// Frees the lock; the word as it was.
State Free(std::atomic<State>& word, State unlocked) {
    if (!IsOnlyThread()) return word.exchange(unlocked, std::memory_order_release);
    const State before = word.load(std::memory_order_relaxed);
    word.store(unlocked, std::memory_order_relaxed);
    return before;
}

#if defined(__linux__)
void SleepWhile(std::atomic<State>& word, State state) {
    ::syscall(SYS_futex, &word, FUTEX_WAIT_PRIVATE, static_cast<std::uint32_t>(state), nullptr,
              nullptr, 0);
}
void WakeOne(std::atomic<State>& word) {
    ::syscall(SYS_futex, &word, FUTEX_WAKE_PRIVATE, 1, nullptr, nullptr, 0);
}
void WakeAll(std::atomic<State>& word) {
    ::syscall(SYS_futex, &word, FUTEX_WAKE_PRIVATE, INT_MAX, nullptr, nullptr, 0);
}
#else
void SleepWhile(std::atomic<State>& word, State state) {
    word.wait(state);
}
void WakeOne(std::atomic<State>& word) {
    word.notify_one();
}
void WakeAll(std::atomic<State>& word) {
    word.notify_all();
}
#endif

// What ThreadSanitizer is told, so that it sees a re-entrant mutex instead of a few atomics and
// reports locks taken in opposite orders. Between a "before" and its "after" it looks away.
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

static_assert(std::atomic<State>::is_always_lock_free);

LYRMutex::LYRMutex(bool holdsLock) noexcept : _state(holdsLock ? kUnlocked : kNoLock) {}

LYRSmartMutex::LYRSmartMutex(int withoutLock) noexcept : LYRMutex(withoutLock == 0) {}

// Out of line, and an exchange: a compiler may drop a plain store into a dying object, and a waiter
// may set kWaiters at any moment before it.
LYRMutex::~LYRMutex() {
    if (_state.load(std::memory_order_relaxed) == kNoLock) return;
    const State state = Free(_state, kNoLock);
    if ((state & kWaiters) != 0) WakeAll(_state);
    if ((state & kHolder) == 0) Destroyed(this);
}

void LYRMutex::LockF() LYR_NO_THREAD_SAFETY_ANALYSIS {
    const State self = Self();
    if (kAnnotated && _state.load(std::memory_order_relaxed) == kNoLock) return;
    BeforeLock(this);
    // A free lock is taken without a look at it before: that would wait for its cache line twice.
    State state = kUnlocked;
    bool locked = true;
    if (!Change(_state, state, kUnlocked | self)) {
        if ((state & kHolder) == self) {
            Nest(_state, state);
        } else {
            locked = AcquireSlowly(kUnlocked | self);
        }
    }
    AfterLock(this, locked);
}

/// Whether the lock is held now; it is not when there is none.
bool LYRMutex::AcquireSlowly(State self) {
    for (;;) {
        State state = _state.load(std::memory_order_relaxed);
        if ((state & ~kWaiters) == kNoLock) return false;
        if ((state & kHolder) == 0) {
            if (Change(_state, state, self)) return true;
            continue;
        }
        // Set in any case and not only while the same thread holds the lock: whoever has found it
        // held goes to sleep instead of taking the cache line from the holder again and again.
        state = _state.fetch_or(kWaiters, std::memory_order_relaxed);
        if ((state & kHolder) != 0) {
            SleepWhile(_state, state | kWaiters);
            self |= kWaiters;
        } else if (state == kNoLock) {
            _state.store(kNoLock, std::memory_order_relaxed);
        }
    }
}

void LYRMutex::UnlockF() LYR_NO_THREAD_SAFETY_ANALYSIS {
    const State state = _state.load(std::memory_order_relaxed);
    if ((state & kHolder) != Self()) return;
    BeforeUnlock(this);
    if ((state & kNested) != 0) {
        AddTo(_state, ~kOneNested + 1);
    } else {
        const State last = Free(_state, kUnlocked);
        if ((last & kWaiters) != 0) WakeOne(_state);
        // Destroyed at exit while it was held: it stays so.
        if (last == kNoLock) _state.store(kNoLock, std::memory_order_relaxed);
    }
    AfterUnlock(this);
}
