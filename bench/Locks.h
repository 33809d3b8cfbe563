#pragma once

#include "LYRSmartMutex.h"

#include <memory>
#include <mutex>

namespace bench {

struct OwnLock {
    LYRSmartMutex mutex{0};
    void lock() LYR_NO_THREAD_SAFETY_ANALYSIS { mutex.LockF(); }
    void unlock() LYR_NO_THREAD_SAFETY_ANALYSIS { mutex.UnlockF(); }
};

struct AllocatedLock {
    std::unique_ptr<std::recursive_mutex> mutex = std::make_unique<std::recursive_mutex>();
    void lock() { mutex->lock(); }
    void unlock() { mutex->unlock(); }
};

struct NoLock {};

}  // namespace bench
