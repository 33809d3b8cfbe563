#pragma once

#include "GUID.h"
#include "LYRExport.h"

/// Reads the braced text form of a GUID, "{xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx}", into `guid`.
///
/// 0 when `guid` has been written. 1, with `guid` untouched, when `text` is null, not 38
/// characters long, or not between braces. Nothing else is checked: the separators may be any
/// character, and a character that is no hexadecimal digit counts as 0. Any thread may call.
LYR_EXPORT int LYRSysTSConvertStringToGUID(const char* text, GUID& guid);
