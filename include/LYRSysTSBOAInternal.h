#pragma once

#include "LYRExport.h"

class LYRSysTSBaseUnknown;
class LYRSysTSMetaClass;

/// What a BOA is made of: an implementation object that is itself handed out as the interface.
class LYR_EXPORT LYRSysTSBOAInternal {
public:
    LYRSysTSBOAInternal() = delete;

    /// LYRSysTSTIEInternal::Tie_Construct with the implementation object as its result, null for
    /// every failure.
    static LYRSysTSBaseUnknown* CreateBOA(LYRSysTSBaseUnknown* object, LYRSysTSMetaClass* metaClass,
                                          LYRSysTSBaseUnknown* (*create)());
};
