#pragma once
#include <lyr/kit.h>
struct ILayer : IUnknown {
    LYR_INTERFACE(ILayer, "e47d9a10-2b6c-4f83-8d15-c09b7e34a652");
    virtual int Raise() = 0;
};
