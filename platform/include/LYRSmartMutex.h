#pragma once

#include "LYRMutex.h"

/// A LYRMutex that its owner builds with or without a lock in it.
class LYR_EXPORT LYRSmartMutex : public LYRMutex {
public:
    /// 0 builds a mutex that holds a lock; any other value builds one that holds none, whose
    /// LockF and UnlockF do nothing. Allocates nothing.
    explicit LYRSmartMutex(int withoutLock) noexcept;

    /// Whether there is a lock in it. The answer never changes while the mutex lives.
    bool HoldsLock() const noexcept {
        return (_state.load(std::memory_order_relaxed) & kLock) != 0;
    }
};

static_assert(sizeof(LYRSmartMutex) == sizeof(void*), "a mutex is one pointer wide");
static_assert(alignof(LYRSmartMutex) == alignof(void*), "a mutex is laid out like a pointer");
