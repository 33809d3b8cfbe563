#pragma once

#include "GUID.h"
#include "LYRExport.h"
#include "LYRSmartMutex.h"

#include <atomic>

/// The lock of LYRSysTSDicoIIDName, never null; it guards only the first use of the tables.
LYR_EXPORT LYRSmartMutex* GetGlobalIIDDicoMutex();

/// The address of that lock, set while the library loads.
extern LYR_EXPORT LYRSmartMutex* IidMutextToForceInitDuringDllLoading;

/// One pair; both fields are interned and never change.
struct IIDNameRecord {
    const GUID* iid;
    const char* interfaceName;
};

/// What hangs a record in one of the two tables; chained oldest first.
struct IIDNameLink {
    IIDNameRecord* record;
    IIDNameLink* next;
};

/// The process-wide registry that pairs interface ids with interface names, one to one.
///
/// Callers let only one thread add at a time (the library adds under the dictionary's lock);
/// queries may run beside an addition in any thread. Nothing throws.
class LYR_EXPORT LYRSysTSDicoIIDName {
public:
    LYRSysTSDicoIIDName() = delete;

    /// Registers the pair. 1 when it is registered after the call, new or known. 0, with nothing
    /// changed, when the id has another name or the name another id, when `name` is null or has
    /// 5000 characters or more, and when memory is out.
    static int AddDicoIIDName(const GUID& iid, const char* name);

    /// The interned name of `iid`, or null. Does not read the dictionary files.
    static const char* QueryDicoIIDNameByIID(const GUID& iid);

    /// The interned id of `name`, or null, also for a null name. Does not read the dictionary
    /// files.
    static const GUID* QueryDicoIIDNameByName(const char* name);

    /// The buckets (0 to 1023) of an id and of a name; 0 for a null name.
    static int _ComputeKeyForIID(const GUID& iid);
    static int _ComputeKeyForName(const char* name);

    /// Makes the tables ready for use, once; later calls do nothing.
    static void _ClearDictionary();

    /// Forgets every pair. For the very end of the application, with no other thread in the
    /// registry; it may be filled again. Interned names and ids stay with their stores.
    static void _FreeDictionary();

private:
    static IIDNameLink* _IIDNameByIID[1024];
    static IIDNameLink* _IIDNameByName[1024];
    static std::atomic<bool> _DictionaryCleared;
};
