#pragma once

#include "LYRMutex.h"

namespace lyr::internal {

/// Holds a lock while it lives.
class LYR_SCOPED_CAPABILITY MutexGuard {
public:
    explicit MutexGuard(LYRMutex& mutex) LYR_ACQUIRE(mutex) : _mutex(mutex) { _mutex.LockF(); }
    ~MutexGuard() LYR_RELEASE() { _mutex.UnlockF(); }
    MutexGuard(const MutexGuard&) = delete;
    MutexGuard& operator=(const MutexGuard&) = delete;

private:
    LYRMutex& _mutex;
};

}  // namespace lyr::internal
