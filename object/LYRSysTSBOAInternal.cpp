#include "LYRSysTSBOAInternal.h"

#include "object/ImplementationObject.h"

LYRSysTSBaseUnknown* LYRSysTSBOAInternal::CreateBOA(LYRSysTSBaseUnknown* object,
                                                    LYRSysTSMetaClass* metaClass,
                                                    LYRSysTSBaseUnknown* (*create)()) {
    return lyr::FindOrMakeImplementation(object, metaClass, create);
}
