#include "LYRSysTSBOAInternal.h"

#include "object/ImplementationObject.h"

LYRSysTSBaseUnknown* LYRSysTSBOAInternal::CreateBOA(LYRSysTSBaseUnknown* object,
                                                    LYRSysTSMetaClass* metaClass,
                                                    LYRSysTSBaseUnknown* (*create)()) {
    return lyr::internal::FindOrMakeImplementation(object, metaClass, create);
}
