#pragma once

#include "LYRComponentModel.h"

#include <cstdlib>

/// The objects, TIEs and counters that live. The program exports it, so that all its libraries
/// count the same.
inline LYR_EXPORT std::atomic<long> living = 0;

/// A member of whatever lives once and dies once.
struct Life {
    Life() { ++living; }
    ~Life() { dead.exchange(true) ? std::abort() : void(--living); }
    std::atomic<bool> dead = false;
};

/// What the libraries implement.
struct IPart : IUnknown {
    virtual const LYRSysTSBaseUnknown* Implementer() const = 0;
};
