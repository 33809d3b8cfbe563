#pragma once

#include "LYRSysTSDictionary.h"
#include "support/Chain.h"

namespace lyr {

/// The dictionary's own state, for the sources that work on it.
struct DictionaryTables {
    /// The bucket's link for the pair, or the end of its chain.
    static ChainSlot<DicEntryLink> Find(int bucket, const char* className,
                                        const char* interfaceName)
        LYR_REQUIRES(GetGlobalDicoMutex());
    static ChainSlot<DicEntryLink> Find(int bucket, const GUID& clsid, const GUID& iid)
        LYR_REQUIRES(GetGlobalDicoMutex());

    /// Whether _DeleteDictionary has closed the dictionary.
    static bool Deleted() { return LYRSysTSDictionary::_DictionaryDeleted; }

    /// Makes the tables ready, unless they are.
    static void EnsureCleared() {
        if (!LYRSysTSDictionary::_DictionaryCleared) LYRSysTSDictionary::_ClearDictionary();
    }

    /// The names of the files that the running scan has met; null outside a scan.
    static ReadFileLink**& ReadFiles() LYR_REQUIRES(GetGlobalDicoMutex()) {
        return LYRSysTSDictionary::_readDicFiles;
    }
};

}  // namespace lyr
