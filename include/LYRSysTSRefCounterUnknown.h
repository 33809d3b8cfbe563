#pragma once

#include "LYRExport.h"

#include <atomic>
#include <cstdint>

/// A base class with an atomic reference count, for objects that are no components. Any thread
/// may count. Made with `new`; the Release that brings the count to 0 deletes the object.
class LYR_EXPORT LYRSysTSRefCounterUnknown {
public:
    /// The count is 1: the creator's.
    LYRSysTSRefCounterUnknown();
    virtual ~LYRSysTSRefCounterUnknown();
    LYRSysTSRefCounterUnknown(const LYRSysTSRefCounterUnknown&) = delete;
    LYRSysTSRefCounterUnknown& operator=(const LYRSysTSRefCounterUnknown&) = delete;

    /// Both return the new count.
    int AddRef();
    int Release();

private:
    std::atomic<std::int32_t> _refCount;
};
