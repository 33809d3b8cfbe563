#pragma once

#if __has_include(<sys/single_threaded.h>)
#include <sys/single_threaded.h>
#define LYR_KNOWS_SINGLE_THREAD 1
#endif

namespace lyr::internal {

/// Whether the process has no other thread, as far as the C library tells.
inline bool IsOnlyThread() {
#if defined(LYR_KNOWS_SINGLE_THREAD)
    return __libc_single_threaded != 0;
#else
    return false;
#endif
}

}  // namespace lyr::internal
