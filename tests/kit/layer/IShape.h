#pragma once
#include <lyr/kit.h>
struct IShape : IUnknown {
    LYR_INTERFACE(IShape, "b1f0c2d6-7a3e-4c58-9e41-5d8a6f20c3b7");
    virtual double Area() = 0;
};
