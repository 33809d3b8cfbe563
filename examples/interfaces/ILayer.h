#pragma once

#include "IUnknown.h"

inline constexpr IID IID_ILayer{
    0xf76c2ff2, 0x683b, 0x4efe, {0xb9, 0xbf, 0xf7, 0xae, 0x49, 0x0c, 0x5c, 0x38}};

/// The layer that a shape lies on; 0 at first. Every requester sees the same one.
class LYR_EXPORT ILayer : public IUnknown {
public:
    virtual int Layer() const = 0;
    virtual void SetLayer(int layer) = 0;

protected:
    ~ILayer() = default;
};
