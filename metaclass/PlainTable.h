#pragma once

#include "LYRSysTSMetaClassExt.h"

#include <typeinfo>

namespace lyr::internal {

/// Whether the meta-object answers requests by its table and search, and in no way of its own.
inline bool IsPlainTable(const LYRSysTSMetaClassBase& metaObject) {
    const std::type_info& type = typeid(metaObject);
    return type == typeid(LYRSysTSMetaClassImpl) || type == typeid(LYRSysTSMetaClassExt);
}

}  // namespace lyr::internal
