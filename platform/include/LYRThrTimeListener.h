#pragma once

#include "LYRExport.h"

#include <chrono>

class LYRMutex;
class LYRThrLoadListener;

/// Hears of what takes long in this layer, whoever in the process asks for it: loads of libraries,
/// and waits for locks. It is called in the thread that has loaded or waited, which may hold any
/// lock; so it must take none that may be held while one of ours is taken, and must not throw. The
/// texts are valid during the call alone.
class LYRThrTimeListener {
public:
    using Clock = std::chrono::steady_clock;

    /// What is heard of: shorter waits are not.
    static constexpr Clock::duration kLongWait = std::chrono::milliseconds(1);

    /// The library manager has had the dynamic loader look for a library, from `begin` to now.
    /// `file` is what is loaded, or was before; null for none, then `words` tell why. `listener` is
    /// the one that the call was given, or null.
    virtual void AfterLoad(const char* library, const char* file, const char* words,
                           LYRThrLoadListener* listener, Clock::time_point begin) = 0;

    /// The thread has waited for the lock, from `begin` to now, and mostly holds it. The lock may
    /// be destroyed meanwhile: its address is no more than a name.
    virtual void AfterWait(const LYRMutex* mutex, Clock::time_point begin) = 0;

    /// Who listens; null as a rule. One that has been named lives as long as the process.
    LYR_EXPORT static LYRThrTimeListener* Current() noexcept;
    LYR_EXPORT static void SetCurrent(LYRThrTimeListener* listener) noexcept;

protected:
    ~LYRThrTimeListener() = default;
};
