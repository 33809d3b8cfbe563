#pragma once

#include "LYRThreadAnnotations.h"

#include <atomic>
#include <cerrno>
#include <new>
#include <type_traits>

namespace lyr::internal {

/// How often something that may be there the next time, mostly memory, has run out. The reading of
/// the dictionary files compares the count before and after: what it may have missed is read again.
inline std::atomic<unsigned> shortages = 0;

/// Whether an error of the system is a shortage, which is then counted.
inline bool CountShortage(int error) noexcept {
    if (error != ENOMEM && error != EMFILE && error != ENFILE) return false;
    ++shortages;
    return true;
}

/// What `action` gives; `refusal`, with the shortage counted, when memory runs out in it. It may be
/// called with any lock held, and so may `action`.
template <typename Refusal, typename Action>
std::invoke_result_t<Action> RefuseOnShortage(Refusal refusal,
                                              Action action) LYR_NO_THREAD_SAFETY_ANALYSIS {
    try {
        return action();
    } catch (const std::bad_alloc&) {
        ++shortages;
        return refusal;
    }
}

}  // namespace lyr::internal
