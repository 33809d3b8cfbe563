#pragma once

#include "IUnknown.h"

inline constexpr IID IID_IGreeter{
    0x9ff2405a, 0xcfea, 0x461a, {0xa5, 0x60, 0xf3, 0x6c, 0x48, 0x98, 0x75, 0xab}};

/// Somebody who greets.
class LYR_EXPORT IGreeter : public IUnknown {
public:
    virtual void Greet(const char* name) const = 0;

protected:
    ~IGreeter() = default;
};
