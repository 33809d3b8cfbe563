#pragma once

#include "IShape.h"

inline constexpr IID IID_ICircle{
    0xf801a6c5, 0x0cb8, 0x4213, {0xb2, 0xcb, 0x7f, 0x85, 0xe4, 0x79, 0x9c, 0xa1}};

/// The class id that LYRSysTSCreateInstance makes a circle from.
inline constexpr CLSID CLSID_Circle{
    0x0e52c988, 0x64b8, 0x447f, {0x9d, 0x03, 0x33, 0xcb, 0x57, 0xc8, 0x49, 0x97}};

/// A shape with a radius; 1 at first.
class LYR_EXPORT ICircle : public IShape {
public:
    virtual double Radius() const = 0;
    virtual void SetRadius(double radius) = 0;

protected:
    ~ICircle() = default;
};
