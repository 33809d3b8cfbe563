#pragma once

#include "IUnknown.h"

inline constexpr IID IID_IColor{
    0xe96364d4, 0xbba4, 0x458c, {0xac, 0x18, 0xe8, 0x67, 0x55, 0x5b, 0x86, 0x58}};

/// The colour of a shape, 0xRRGGBB; black at first.
class LYR_EXPORT IColor : public IUnknown {
public:
    virtual std::uint32_t Color() const = 0;
    virtual void SetColor(std::uint32_t color) = 0;

protected:
    ~IColor() = default;
};
