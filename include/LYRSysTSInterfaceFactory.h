#pragma once

class IUnknown;
class LYRSysTSBaseUnknown;

/// Builds one interface implementation for `object`; `threadSafe` is 1 for an object that has a
/// lock of its own and 0 otherwise. Called with that lock held. The result, or null for none, is
/// handed to the client as it is; the count that goes with it is raised on `object`.
using LYRSysTSInterfaceFactory = IUnknown* (*)(LYRSysTSBaseUnknown* object,
                                               unsigned char threadSafe);
