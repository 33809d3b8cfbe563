#pragma once
#include <lyr/kit.h>
struct IGreeter : IUnknown {
    LYR_INTERFACE(IGreeter, "9ff2405a-cfea-461a-a560-f36c489875ab");
    virtual void Greet(const char* name) = 0;
};
