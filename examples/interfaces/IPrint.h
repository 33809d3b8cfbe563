#pragma once

#include "IUnknown.h"

inline constexpr IID IID_IPrint{
    0xef2e7eab, 0xd499, 0x4b98, {0xa1, 0x0e, 0x12, 0xbe, 0xc0, 0x14, 0xbe, 0x0c}};

/// Printing on paper. Nobody has implemented it yet.
class LYR_EXPORT IPrint : public IUnknown {
public:
    virtual void Print() = 0;

protected:
    ~IPrint() = default;
};
