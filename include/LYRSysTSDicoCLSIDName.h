#pragma once

#include "GUID.h"
#include "LYRExport.h"
#include "LYRSmartMutex.h"

#include <atomic>

/// The lock of LYRSysTSDicoCLSIDName, never null; it guards only the first use of the table.
LYR_EXPORT LYRSmartMutex* GetGlobalCLSIDDicoMutex();

/// The address of that lock, set while the library loads.
extern LYR_EXPORT LYRSmartMutex* ClsidMutextToForceInitDuringDllLoading;

/// One class; all fields are interned and never change. `library` stands as it was given and may
/// be null.
struct CLSIDNameRecord {
    const GUID* clsid;
    const char* className;
    const char* library;
};

/// What hangs a record in the table; chained oldest first.
struct CLSIDNameLink {
    CLSIDNameRecord* record;
    CLSIDNameLink* next;
};

/// The process-wide registry of class ids: the name of the class and the library that implements
/// it.
///
/// Callers let only one thread add at a time (the library adds under the dictionary's lock);
/// queries may run beside an addition in any thread. Nothing throws.
class LYR_EXPORT LYRSysTSDicoCLSIDName {
public:
    LYRSysTSDicoCLSIDName() = delete;

    /// Registers the class; `library` may be null. The record now registered for `clsid`: a new
    /// one, or a known one, unchanged, with the same name and no contrary library. The registry
    /// owns it. Null, with nothing changed, when the id has another name or library, when `name`
    /// is null, when a text has 5000 characters or more, and when memory is out.
    static CLSIDNameRecord* AddDicoCLSIDName(const GUID& clsid, const char* name,
                                             const char* library);

    /// The record of `clsid`, owned by the registry, or null. Has the dictionary files read first,
    /// and so takes the dictionary's lock.
    static CLSIDNameRecord* QueryDicoCLSIDNameByCLSID(const GUID& clsid);

    /// The bucket (0 to 1023) of an id.
    static int _ComputeKeyForCLSID(const GUID& clsid);

    /// Makes the table ready for use, once; later calls do nothing.
    static void _ClearDictionary();

    /// Forgets every class. For the very end of the application, with no other thread in the
    /// registry; it may be filled again. Interned names and ids stay with their stores.
    static void _FreeDictionary();

private:
    static CLSIDNameLink* _CLSIDNameByCLSID[1024];
    static std::atomic<bool> _DictionaryCleared;
};
