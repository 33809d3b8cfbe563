#pragma once

#include "IUnknown.h"

inline constexpr IID IID_IView{
    0xcb4482a6, 0x847b, 0x46ab, {0xab, 0xd8, 0x3d, 0x28, 0x7b, 0x15, 0xa8, 0x4a}};

/// A view of a shape. Every requester has one of its own, for use by one thread at a time.
class LYR_EXPORT IView : public IUnknown {
public:
    /// Shows the shape `factor` times as wide and as high; 1 at first.
    virtual void Zoom(double factor) = 0;
    virtual double VisibleArea() const = 0;

protected:
    ~IView() = default;
};
