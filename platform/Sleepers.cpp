#include "Sleepers.h"

#include <chrono>
#include <condition_variable>
#include <new>
#include <pthread.h>
#include <type_traits>

#if defined(__linux__)
#include <linux/membarrier.h>
#include <sys/syscall.h>
#include <unistd.h>
#endif

namespace lyr::internal {

namespace {

/// Whether every thread of the process has passed a fence since the call.
bool PassBarrierInAllThreads() {
#if defined(__linux__)
    const auto call = [](int command) { return ::syscall(SYS_membarrier, command, 0, 0) == 0; };
    return call(MEMBARRIER_CMD_PRIVATE_EXPEDITED) ||
           (call(MEMBARRIER_CMD_REGISTER_PRIVATE_EXPEDITED) &&
            call(MEMBARRIER_CMD_PRIVATE_EXPEDITED));
#else
    std::atomic_thread_fence(std::memory_order_seq_cst);  // each unlock has its own
    return true;
#endif
}

/// Keeps its thread from being cancelled: a lock is no place for that, as with any other mutex, and
/// the table would keep a sleeper whose stack is gone.
class Uncancelled {
public:
    Uncancelled() { ::pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &_before); }
    ~Uncancelled() { ::pthread_setcancelstate(_before, &_before); }
    Uncancelled(const Uncancelled&) = delete;
    Uncancelled& operator=(const Uncancelled&) = delete;

private:
    int _before = PTHREAD_CANCEL_ENABLE;
};

}  // namespace

/// On the stack of the thread that sleeps.
struct Sleepers::Sleeper {
    const Word* word;
    Sleeper* next = nullptr;
    bool woken = false;
    std::condition_variable wake = {};
};

constinit Sleepers Sleepers::_all[kCount];
static_assert(std::is_trivially_destructible_v<Sleepers>, "locks are used until the very end");

void Sleepers::Sleep(const Word& word, bool (*isHeld)(std::uint64_t state)) {
    const Uncancelled uncancelled;
    Sleeper self{&word};
    std::unique_lock<std::mutex> guard(_mutex);
    Append(self);
    const bool mustSleep = isHeld(word.load(std::memory_order_seq_cst));
    if (mustSleep && !SleepBriefly(self, guard)) SleepForGood(self, guard, isHeld);
    if (!self.woken) Remove([&self](const Sleeper& sleeper) { return &sleeper == &self; });
}

bool Sleepers::SleepBriefly(Sleeper& self, std::unique_lock<std::mutex>& guard) {
    const auto isWoken = [&self] { return self.woken; };
    return self.wake.wait_for(guard, std::chrono::milliseconds(1), isWoken);
}

void Sleepers::SleepForGood(Sleeper& self, std::unique_lock<std::mutex>& guard,
                            bool (*isHeld)(std::uint64_t state)) {
    guard.unlock();
    const bool passed = PassBarrierInAllThreads();
    guard.lock();
    if (!passed || !isHeld(self.word->load(std::memory_order_relaxed))) return;
    self.wake.wait(guard, [&self] { return self.woken; });
}

bool Sleepers::WakeOne(const Word& word) {
    const std::lock_guard<std::mutex> guard(_mutex);
    Sleeper* const woken = Remove([&word](const Sleeper& s) { return s.word == &word; });
    if (woken == nullptr) return false;
    woken->woken = true;
    woken->wake.notify_one();  // under the mutex: the sleeper dies as soon as it has it
    return true;
}

// While the library loads: a fork that has begun calls no handler that is registered meanwhile.
// When memory is out, a child forgets nobody.
void Sleepers::RegisterWithFork() {
    ::pthread_atfork(nullptr, nullptr, &ForgetAll);
}

void Sleepers::ForgetAll() {
    for (Sleepers& sleepers : _all) new (&sleepers) Sleepers;
}

void Sleepers::Append(Sleeper& sleeper) {
    Sleeper* last = _first.load(std::memory_order_relaxed);
    if (last == nullptr) return _first.store(&sleeper, std::memory_order_seq_cst);
    while (last->next != nullptr) last = last->next;
    last->next = &sleeper;
}

/// Takes the first sleeper for which `test` holds out of the chain, and returns it, or null.
template <typename Test>
Sleepers::Sleeper* Sleepers::Remove(Test test) {
    Sleeper* before = nullptr;
    Sleeper* found = _first.load(std::memory_order_relaxed);
    for (; found != nullptr && !test(*found); found = found->next) before = found;
    if (found == nullptr) return nullptr;
    if (before == nullptr) {
        _first.store(found->next, std::memory_order_relaxed);
    } else {
        before->next = found->next;
    }
    return found;
}

}  // namespace lyr::internal
