#include "Loads.h"

#include "OnlyThread.h"

#include <atomic>
#include <dlfcn.h>
#include <link.h>

namespace lyr {

namespace {

constinit std::atomic<std::uint64_t> knownToHaveEnded = 0;
constinit std::atomic<unsigned> running = 0;

/// How many libraries the loader has mapped.
std::uint64_t CountMapped() {
    std::uint64_t mapped = 0;
    const auto read = [](dl_phdr_info* info, std::size_t, void* result) {
        *static_cast<std::uint64_t*>(result) = info->dlpi_adds;
        return 1;  // each library tells the same
    };
    ::dl_iterate_phdr(read, &mapped);
    return mapped;
}

// While this library loads. If it comes with the program, so do all that are mapped by now, and
// their initialisers run in one thread.
[[gnu::constructor]] void EndThoseOfTheStart() {
    knownToHaveEnded = CountMapped();
}

void EndThoseMapped() {
    const std::uint64_t mapped = CountMapped();
    std::uint64_t known = Loads::Ended();
    if (mapped == known) return;
    // Asks for the program itself, and so does nothing but take its turn.
    ::dlopen(nullptr, RTLD_NOW | RTLD_LOCAL | RTLD_NOLOAD);
    // Release: whoever reads the number sees what those initialisers have done.
    while (known < mapped &&
           !knownToHaveEnded.compare_exchange_weak(known, mapped, std::memory_order_release,
                                                   std::memory_order_relaxed)) {
    }
}

}  // namespace

std::uint64_t Loads::Ended() {
    return knownToHaveEnded.load(std::memory_order_acquire);
}

bool Loads::MayHaveBeenRunningSince(std::uint64_t ended) {
    // Equal now, the two numbers have been equal all along.
    if (CountMapped() == ended) return false;
    if (!IsOnlyThread() || running != 0) return true;
    // Nobody else is there to load anything: this one knows only that somebody had.
    EndThoseMapped();
    return false;
}

Loads::Running::Running() {
    ++running;
}

Loads::Running::~Running() {
    if (--running == 0) EndThoseMapped();
}

}  // namespace lyr
