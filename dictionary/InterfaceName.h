#pragma once

#include "GUID.h"

namespace lyr::internal {

/// LYRSysTSDictionary::GetInterfaceName; `load` as in the dictionary's queries.
const char* InterfaceName(const GUID& id, short load);

}  // namespace lyr::internal
