#pragma once

#include "GUID.h"

namespace lyr {

/// LYRSysTSDictionary::GetInterfaceName; `load` as in the dictionary's queries.
const char* InterfaceName(const GUID& iid, short load);

}  // namespace lyr
