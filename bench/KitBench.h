#pragma once

#include <lyr/interface.h>

/// What the objects of kit_bench are asked for, those written by hand and those on the kit.
struct IWork : IUnknown {
    LYR_INTERFACE(IWork, "6f3f3b52-4b1e-4d0e-9a53-0d6a5c1f7e21");
    virtual int Work() = 0;
};
