#pragma once

#include "LYRSysTSDicoCLSIDName.h"

namespace lyr::internal {

/// LYRSysTSDicoCLSIDName::QueryDicoCLSIDNameByCLSID, of what is known: no file is read.
const CLSIDNameRecord* KnownClass(const GUID& clsid);

}  // namespace lyr::internal
