#pragma once

#include "LYRSysTSMetaClassExt.h"

namespace lyr::internal {

/// The meta-object as an extension's; null for null and for any other.
inline LYRSysTSMetaClassExt* ToExtension(LYRSysTSMetaClass* metaObject) {
    LYRSysTSMetaClassBase* const base =
        metaObject != nullptr ? metaObject->ToMetaClassBase() : nullptr;
    return base != nullptr ? base->CastToMetaExtension() : nullptr;
}

}  // namespace lyr::internal
