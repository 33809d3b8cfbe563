#pragma once

#include "GUID.h"
#include "LYRExport.h"
#include "LYRSysTSTypeOfClass.h"

class LYRSysTSMetaClass;

/// LYRSysTSDictionary::FindOrCreateMetaObject as a function: what a library calls to get the
/// meta-object of one of its classes.
LYR_EXPORT LYRSysTSMetaClass* LYRSysTSFindOrCreateMetaObject(const char* name,
                                                             LYRSysTSTypeOfClass type,
                                                             const GUID* clsid,
                                                             LYRSysTSMetaClass* base,
                                                             const char* extendedName);
