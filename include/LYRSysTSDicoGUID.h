#pragma once

#include "GUID.h"
#include "LYRExport.h"
#include "LYRSmartMutex.h"

#include <atomic>

/// The lock of LYRSysTSDicoGUID, never null. It guards the table, and is a leaf: the
/// store takes it itself and calls nothing under it.
LYR_EXPORT LYRSmartMutex* GetGlobalGUIDDicoMutex();

/// The address of that lock, set while the library loads.
extern LYR_EXPORT LYRSmartMutex* GuidMutextToForceInitDuringDllLoading;

/// One stored GUID; chained oldest first.
struct DicoGUIDNode {
    DicoGUIDNode* next;
    GUID guid;
};

/// The process-wide store that keeps one copy of each distinct GUID. Every operation may be
/// called by any thread, and none throws.
class LYR_EXPORT LYRSysTSDicoGUID {
public:
    LYRSysTSDicoGUID() = delete;

    /// The stored copy of `*g`: the same address for equal values, valid and unchanged until
    /// _FreeDictionary. The store owns it. Null, with nothing changed, for a null `g` and when
    /// memory is out.
    static const GUID* AddGUIDInDico(const GUID* g);

    /// The bucket of `*g` (0 to 4095); 0 for null.
    static int _ComputeGUIDKey(const GUID* g);

    /// Makes the table ready for use, once; later calls do nothing.
    static void _ClearDictionary();

    /// Frees every copy: all addresses handed out before become invalid. For the very end of the
    /// application, with no other thread in the store; it may be filled again.
    static void _FreeDictionary();

private:
    static DicoGUIDNode* _DicoGUID[4096] LYR_GUARDED_BY(GetGlobalGUIDDicoMutex());
    static std::atomic<bool> _DictionaryCleared;
};
