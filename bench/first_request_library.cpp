// A small component library: built in many copies, each with an entry point of its own.

#include "LYRSysTSBaseUnknown.h"

extern "C" LYR_EXPORT IUnknown* LYR_BENCH_ENTRY_POINT(LYRSysTSBaseUnknown* object, unsigned char) {
    return object;
}
