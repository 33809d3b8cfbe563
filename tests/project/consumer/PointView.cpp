#include "NamedTie.h"

extern "C" LYR_EXPORT IUnknown* LYRSysTSCreateIPointViewPoint(LYRSysTSBaseUnknown* object,
                                                              unsigned char) {
    return new NamedTie(object, "from libPointView");
}
