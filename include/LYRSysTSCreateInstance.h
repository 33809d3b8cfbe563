#pragma once

#include "GUID.h"
#include "HRESULT.h"
#include "LYRExport.h"

/// Creates an object by class id: calls the entry point "LYRSysTSDllGetClassObject" of the library
/// that the dictionary files name for `clsid`, with the same three arguments, and returns its
/// result as it comes. E_FAIL, with `*out` untouched, when the class is not known or has no library
/// for it, or the library does not load or does not define the entry point. The files are read
/// first. The entry point runs with no lock of this system held.
LYR_EXPORT HRESULT LYRSysTSCreateInstance(const GUID& clsid, const GUID& iid, void** out);
