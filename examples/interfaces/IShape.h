#pragma once

#include "IUnknown.h"

inline constexpr IID IID_IShape{
    0xe7a31e45, 0xef45, 0x4cd4, {0xaf, 0xc8, 0xdf, 0xb5, 0xf3, 0x1f, 0x7c, 0xb3}};

/// Anything that can be drawn.
class LYR_EXPORT IShape : public IUnknown {
public:
    virtual double Area() const = 0;

protected:
    ~IShape() = default;
};
