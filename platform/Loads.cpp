#include "Loads.h"

#include "OnlyThread.h"

#include <atomic>
#include <chrono>
#include <dlfcn.h>
#include <link.h>
#include <pthread.h>

namespace lyr::internal {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::uint64_t kNoMark = ~std::uint64_t{0};

// Our loads: how many are running, nested ones too, and above that how many have ever begun, so
// that between two equal values none has begun or ended.
constinit std::atomic<std::uint64_t> ours = 0;
constexpr std::uint64_t kRunning = 0xFFFF'FFFF;
constexpr std::uint64_t kOneBegins = (std::uint64_t{1} << 32) + 1;

// How many libraries are known to have been mapped. All of these are loaded, but for those of our
// running loads, and perhaps those of others while there is doubt.
constinit std::atomic<std::uint64_t> known = 0;
constinit std::atomic<Clock::rep> doubtfulUntil = 0;

constinit std::atomic<pthread_t> runner = {};     // a thread with a load of ours, if not none
constinit std::atomic<std::uint64_t> inVain = 0;  // while so many are mapped, nobody waits
constinit std::atomic<unsigned> process = 0;      // how many forks have led here

std::uint64_t CountMapped() {
    std::uint64_t mapped = 0;
    const auto read = [](dl_phdr_info* info, std::size_t, void* result) {
        *static_cast<std::uint64_t*>(result) = info->dlpi_adds;
        return 1;  // each library tells the same
    };
    ::dl_iterate_phdr(read, &mapped);
    return mapped;
}

/// Release: whoever reads the number sees what the initialisers that it stands for have done.
void Know(std::uint64_t mapped) {
    std::uint64_t before = known.load(std::memory_order_relaxed);
    while (before < mapped &&
           !known.compare_exchange_weak(before, mapped, std::memory_order_release,
                                        std::memory_order_relaxed)) {
    }
}

/// Takes notice of what others have mapped, if no load of ours has been running since `ours` had
/// this value.
void NoticeOthers(std::uint64_t before) {
    const std::uint64_t mapped = CountMapped();
    if (mapped == known.load(std::memory_order_relaxed) || ours != before) return;
    if (!IsOnlyThread()) {
        doubtfulUntil = (Clock::now() + std::chrono::seconds(3)).time_since_epoch().count();
    }
    Know(mapped);
}

bool IsDoubtful() {
    const Clock::rep until = doubtfulUntil;
    return until != 0 && Clock::now().time_since_epoch().count() < until;
}

/// In the child of a fork, where the loads of the other threads have no end.
void ForgetRunning() {
    ours = 0;
    runner = pthread_t{};
    ++process;
}

// While this library loads. If it comes with the program, so does all that is mapped by now, and
// the initialisers run in one thread.
[[gnu::constructor]] void Begin() {
    known = CountMapped();
    ::pthread_atfork(nullptr, nullptr, &ForgetRunning);
}

bool BecomeRunner() {
    pthread_t nobody = {};
    return runner.compare_exchange_strong(nobody, ::pthread_self());
}

}  // namespace

std::uint64_t Loads::Mark() {
    if ((ours & kRunning) != 0 || IsDoubtful()) return kNoMark;
    return known.load(std::memory_order_acquire);
}

bool Loads::MayHaveBeenRunningSince(std::uint64_t mark) {
    // No more is ever known than mapped, and both only grow. So if as much is mapped now as was
    // known then, nothing else was mapped then or has been since.
    if (CountMapped() == mark) return false;
    const std::uint64_t before = ours;
    if ((before & kRunning) != 0) return true;
    NoticeOthers(before);
    return !IsOnlyThread();
}

bool Loads::MayAwait() {
    if (IsOnlyThread() || inVain == CountMapped()) return false;
    return ::pthread_equal(runner, ::pthread_self()) == 0;
}

void Loads::GiveUp() {
    inVain = CountMapped();
}

Loads::Running::Running() : _process(process), _isFirst(BecomeRunner()) {
    std::uint64_t before = ours;
    do {
        if ((before & kRunning) == 0) NoticeOthers(before);
    } while (!ours.compare_exchange_weak(before, before + kOneBegins));
}

Loads::Running::~Running() {
    if (process != _process) return;
    if (_isFirst) runner = pthread_t{};
    std::uint64_t before = ours;
    do {
        // The last one answers for all of ours, and before it is gone. It takes its turn in the
        // loader, by asking for the program itself: what is mapped is loaded then.
        if ((before & kRunning) != 1) continue;
        const std::uint64_t mapped = CountMapped();
        if (mapped == known.load(std::memory_order_relaxed)) continue;
        ::dlopen(nullptr, RTLD_NOW | RTLD_LOCAL | RTLD_NOLOAD);
        Know(mapped);
    } while (!ours.compare_exchange_weak(before, before - 1));
}

}  // namespace lyr::internal
