#pragma once

#include "LYRExport.h"

/// Creates an object by class name: calls the creation function registered for `name`; failing
/// that, the entry point "fctLYRSysTSCreate" + `name` of `library`; if that is null, of the library
/// that the dictionary names for (`name`, "CreateInterface"). `argument` is handed on and the
/// result handed back unchanged. Null for a null name, when there is neither function nor library,
/// and when the library does not define the entry point. The dictionary files are read first. The
/// function runs with no lock of this system held.
LYR_EXPORT void* LYRSysTSCreateExternalObject(const char* name, const char* library,
                                              void* argument);
