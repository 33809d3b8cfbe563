#include "LYRSmartMutex.h"
#include "LYRThrTimeListener.h"
#include "OnlyThread.h"
#include "Sleepers.h"

#include <atomic>
#include <cstdint>
#include <system_error>

#if defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define LYR_UNDER_TSAN 1
#endif
#elif defined(__SANITIZE_THREAD__)
#define LYR_UNDER_TSAN 1
#endif
#if defined(LYR_UNDER_TSAN) && !defined(LYR_NO_TSAN_ANNOTATIONS)
#define LYR_TSAN_ANNOTATIONS 1
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
// lock, else kLock, with the holder and its nested holds while it is held. Whoever finds it free
// takes it with one atomic exchange; from then on only the holder writes it, so nested holds and
// the unlock are plain stores. (At exit the destructor writes it too. Where the holder's store
// comes last, the mutex goes on as a lock instead of as none, which keeps nobody out for ever
// either.) While the process has one thread, taking the lock is a plain store too; the C
// library's own locks and std::shared_ptr do the same.
//
// Waiting. Sections are short, so whoever finds the lock held tries a few times more, ever less
// often, as each try takes the cache line from the holder. Then it sleeps until an unlock wakes it;
// Sleepers.h tells how the two do not miss each other.
//
// Destruction right after another thread's unlock is safe: after its releasing store UnlockF uses
// the mutex's address as a name only.

namespace {

using lyr::internal::Sleepers;
using State = std::uint64_t;

constexpr State kHolder = 0x0000'FFFF'FFFF'FFC0;
constexpr State kOneNested = 0x0001'0000'0000'0000;
constexpr State kNested = 0xFFFF'0000'0000'0000;

constexpr int kMostPauses = 16;  // in a row, between two tries, before a thread sleeps

/// What tells the running thread from every other: the address of its descriptor, which is in a
/// register of the processor, while any other name of the thread costs a call. Descriptors are
/// larger than the 64 bytes that the mask leaves out, and user addresses have 48 bits unless a
/// program asks the kernel for more.
State Self() {
    return reinterpret_cast<std::uintptr_t>(__builtin_thread_pointer()) & kHolder;
}

/// Makes the word of a free lock that of `held`; false when it is another one. Where no other
/// thread can come in between, a plain store does what an exchange does.
bool Take(std::atomic<State>& word, State free, State held) {
    if (!lyr::internal::IsOnlyThread()) {
        return word.compare_exchange_strong(free, held, std::memory_order_acquire,
                                            std::memory_order_relaxed);
    }
    if (word.load(std::memory_order_relaxed) != free) return false;
    word.store(held, std::memory_order_relaxed);
    return true;
}

/// Lets the processor wait for a moment.
void Pause() {
#if defined(__x86_64__)
    __builtin_ia32_pause();
#elif defined(__aarch64__)
    asm volatile("isb");
#endif
}

/// A wait, which whoever listens hears of at its end if it was long.
class Wait {
public:
    explicit Wait(const LYRMutex* mutex) : _mutex(mutex) {
        if (_listener != nullptr) _begin = LYRThrTimeListener::Clock::now();
    }
    ~Wait() {
        if (_listener == nullptr) return;
        const auto time = LYRThrTimeListener::Clock::now() - _begin;
        if (time >= LYRThrTimeListener::kLongWait) _listener->AfterWait(_mutex, _begin);
    }
    Wait(const Wait&) = delete;
    Wait& operator=(const Wait&) = delete;

private:
    LYRThrTimeListener* const _listener = LYRThrTimeListener::Current();
    const LYRMutex* const _mutex;
    LYRThrTimeListener::Clock::time_point _begin = {};
};

void ThrowUnlessOneMoreNests(State state) {
    if ((state & kNested) != kNested) return;
    throw std::system_error(std::make_error_code(std::errc::resource_unavailable_try_again));
}

// What ThreadSanitizer is told, so that it sees a re-entrant mutex instead of a few atomics and
// reports locks taken in opposite orders. Between a "before" and its "after" it looks away. It is
// not told of a destruction, which at exit may meet threads at work; it forgets a lock with its
// memory. Told nothing, it sees whether the atomics order what the lock guards: stress/locks.cpp is
// for that.
#if defined(LYR_TSAN_ANNOTATIONS)
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
// As in LockF, where a sleeper's half of the waking is looked away from.
void BeforeWake(void* mutex) {
    __tsan_mutex_pre_signal(mutex, 0);
}
void AfterWake(void* mutex) {
    __tsan_mutex_post_signal(mutex, 0);
}
#else
constexpr bool kAnnotated = false;
void BeforeLock(void*) {}
void AfterLock(void*, bool) {}
void BeforeUnlock(void*) {}
void AfterUnlock(void*) {}
void BeforeWake(void*) {}
void AfterWake(void*) {}
#endif

}  // namespace

static_assert(std::atomic<State>::is_always_lock_free);

LYRMutex::LYRMutex(bool holdsLock) noexcept : _state(holdsLock ? kLock : kNoLock) {}

LYRSmartMutex::LYRSmartMutex(int withoutLock) noexcept : LYRMutex(withoutLock == 0) {}

// Out of line: a compiler may drop a store into a dying object.
LYRMutex::~LYRMutex() {
    const State state = _state.load(std::memory_order_relaxed);
    if (state == kNoLock) return;
    if (kAnnotated) {
        // At exit another thread may be about to take or free it, and must be seen to do so.
        _state.fetch_and(~kLock, std::memory_order_release);
    } else {
        _state.store(state & ~kLock, std::memory_order_release);
    }
    BeforeWake(this);
    Sleepers::BetweenStoreAndLook();
    Sleepers& sleepers = Sleepers::Of(_state);
    while (sleepers.AreThere() && sleepers.WakeOne(_state)) continue;
    AfterWake(this);
}

void LYRMutex::LockF() LYR_NO_THREAD_SAFETY_ANALYSIS {
    const State seen = _state.load(std::memory_order_relaxed);
    if ((seen & kLock) == 0) return;
    const State self = Self();
    const bool nests = (seen & kHolder) == self;
    if (nests) ThrowUnlessOneMoreNests(seen);
    BeforeLock(this);
    bool locked = true;
    if (nests) {
        _state.store(seen + kOneNested, std::memory_order_relaxed);
    } else {
        locked = Take(_state, kLock, kLock | self) || AcquireSlowly(kLock | self);
    }
    AfterLock(this, locked);
}

/// Whether the lock is held now; it is not when there is none.
bool LYRMutex::AcquireSlowly(State held) {
    const Wait wait(this);
    const auto isHeld = [](State state) { return (state & kLock) != 0 && (state & kHolder) != 0; };
    for (;;) {
        for (int pauses = 1; pauses <= kMostPauses; pauses *= 2) {
            const State seen = _state.load(std::memory_order_relaxed);
            if ((seen & kLock) == 0) return false;
            if (!isHeld(seen) && Take(_state, kLock, held)) return true;
            for (int i = 0; i < pauses; ++i) Pause();
        }
        Sleepers::Of(_state).Sleep(_state, isHeld);
    }
}

void LYRMutex::UnlockF() LYR_NO_THREAD_SAFETY_ANALYSIS {
    const State state = _state.load(std::memory_order_relaxed);
    if ((state & kHolder) != Self()) return;
    BeforeUnlock(this);
    if ((state & kNested) != 0) {
        _state.store(state - kOneNested, std::memory_order_relaxed);
    } else {
        _state.store(state & kLock, std::memory_order_release);
        Sleepers::BetweenStoreAndLook();
        Sleepers& sleepers = Sleepers::Of(_state);
        if (sleepers.AreThere()) sleepers.WakeOne(_state);
    }
    AfterUnlock(this);
}
