#pragma once

#include "LYRExport.h"
#include "LYRSysTSInterfaceFactory.h"

class LYRSysTSMetaClass;

/// Registers a class's creation function while the library that defines such an object at
/// namespace scope loads. It carries no state.
class LYR_EXPORT LYRSysTSFillDictionary {
public:
    /// Registers `factory` as what LYRSysTSCreateExternalObject calls for `className`, when
    /// `interfaceName` is exactly "CreateInterface". `factory` is a `void* (*)(void*)` in this
    /// type. Any other interface name, or a null, registers nothing. A refusal by the dictionary
    /// is only said on standard error.
    LYRSysTSFillDictionary(const char* className, const char* interfaceName,
                           LYRSysTSInterfaceFactory factory);

    /// Registers nothing.
    LYRSysTSFillDictionary(const LYRSysTSMetaClass* metaClass, const LYRSysTSMetaClass* interface,
                           LYRSysTSInterfaceFactory factory);

    /// Always 1; does nothing.
    static int InitMetaClasses(LYRSysTSMetaClass* metaClass, LYRSysTSMetaClass* interface);
};
