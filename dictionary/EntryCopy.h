#pragma once

#include "LYRSysTSInfoDic.h"

namespace lyr::internal {

/// What an entry of the dictionary says, copied under its lock: as soon as that is given back,
/// another thread may fill the record, or free it in _DeleteDictionary.
struct EntryCopy {
    LYRSysTSInfoDic* record = nullptr;  ///< null without such an entry; for the dictionary's use
    LYRSysTSInterfaceFactory creator = nullptr;
    const char* library = nullptr;
    const char* leaf = nullptr;
    const char* extension = nullptr;

    /// The entry of the pair; `load` as in the dictionary's queries. A null name has none.
    static EntryCopy Of(const char* className, const char* interfaceName, short load);
    static EntryCopy Of(const GUID& clsid, const GUID& iid, short load);
};

}  // namespace lyr::internal
