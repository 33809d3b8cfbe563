#pragma once

#include "GUID.h"
#include "LYRExport.h"

/// 00000000-0000-0000-C000-000000000046, the id of IUnknown.
extern LYR_EXPORT const GUID IID_IUnknown;

/// 6DADD843-BCD7-4107-B9E9-72342D738784, the class id of LYRSysTSBaseUnknown; every component
/// object answers it as an interface id with itself.
extern LYR_EXPORT const GUID CLSID_LYRSysTSBaseUnknown;

/// DC9A2804-3801-43DE-AD64-971FAE3C7F4A, the interface key under which the dictionary records a
/// class's meta-object by class id. No object implements it.
extern LYR_EXPORT const GUID CLSID_LYRSysTSMetaClass;
