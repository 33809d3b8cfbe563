#include "IGreeter.h"
#include <cstdio>
LYR_COMPONENT(Greeter, IGreeter) {
    void Greet(const char* name) override { std::printf("Hello, %s!\n", name); }
};
