#include <LYRComponentModel.h>
#include <cstdio>

extern "C" LYR_EXPORT IUnknown* LYRSysTSCreateIPointViewPoint(LYRSysTSBaseUnknown* object,
                                                              unsigned char) {
    std::puts("from libPointView");
    return object;
}
