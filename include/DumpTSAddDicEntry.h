#pragma once

#include "GUID.h"
#include "LYRExport.h"
#include "LYRSysTSInfoDic.h"
#include "LYRSysTSInterfaceFactory.h"

/// Prints one addition to the dictionary on standard output, numbered, in five lines. Call it with
/// what is handed to AddDictionaryTS: either both ids or both names, the other two null; `info`
/// and `sharedLibrary` may be null. 1 when it printed; 0, without output, for any other
/// combination. Calls of several threads may mix their lines.
LYR_EXPORT int DumpTSAddDicEntry(const GUID* clsid, const GUID* iid, const char* className,
                                 const char* interfaceName, int key,
                                 LYRSysTSInterfaceFactory factory, LYRSysTSInfoDic* info,
                                 const char* sharedLibrary);
