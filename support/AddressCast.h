#pragma once

#include "LYRSysTSInterfaceFactory.h"

class LYRSysTSMetaClass;

namespace lyr::internal {

/// The function at an address that the dynamic loader gave. POSIX has both in one representation.
template <typename Function>
Function ToFunction(void* address) noexcept {
    return reinterpret_cast<Function>(address);
}

/// A meta-object in the type of a record's `creator`, and back. It is never called.
inline LYRSysTSInterfaceFactory ToCreator(LYRSysTSMetaClass* metaObject) noexcept {
    return ToFunction<LYRSysTSInterfaceFactory>(metaObject);
}

inline LYRSysTSMetaClass* ToMetaObject(LYRSysTSInterfaceFactory creator) noexcept {
    return static_cast<LYRSysTSMetaClass*>(reinterpret_cast<void*>(creator));
}

}  // namespace lyr::internal
