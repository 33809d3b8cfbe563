#pragma once

#include "GUID.h"
#include "HRESULT.h"
#include "LYRExport.h"
#include "LYRSmartMutex.h"
#include "LYRSysTSInfoDic.h"
#include "LYRSysTSInterfaceFactory.h"
#include "LYRSysTSTypeOfClass.h"

#include <atomic>

class LYRSysTSDictionaryReader;
class LYRSysTSMetaClass;
struct dirent;

namespace lyr::internal {
struct DictionaryTables;
class Refusals;
}  // namespace lyr::internal

/// The dictionary's lock, never null. It guards both tables and the fields of their records. A
/// thread may hold it across several operations; it is taken before the locks of the stores and
/// registries and never after them.
LYR_EXPORT LYRSmartMutex* GetGlobalDicoMutex();

/// The address of that lock, set while the library loads.
extern LYR_EXPORT LYRSmartMutex* StaticDicoMutextToForceInitDuringDllLoading;

/// What hangs a record in one of the two tables; chained oldest first.
struct DicEntryLink {
    LYRSysTSInfoDic* info;
    DicEntryLink* next;
};

/// A file name that the running scan has met; `name` is interned.
struct ReadFileLink {
    const char* name;
    ReadFileLink* next;
};

/// The process-wide interface dictionary: for a class and an interface, which library implements
/// the pair and what creates the implementation. Entries are found by (class name, interface
/// name) and by (class id, interface id); one record may serve both.
///
/// Any thread may call any operation at any time. Records belong to the dictionary until
/// _DeleteDictionary. The first registration of a value stays: a repetition is accepted, fills
/// what is still empty and returns the same record; another value for a set field is refused with
/// "Problem allocating structure dico\n" on standard error and a null result, and leaves every
/// entry, and a record handed in as `info`, as it was. So does a lack of memory. (An addition by
/// ids and by names is two of these.) Nothing throws but FindOrCreateMetaObject, and
/// _ReadDictionary what its reader throws.
class LYR_EXPORT LYRSysTSDictionary {
public:
    LYRSysTSDictionary() = delete;

    /// Registers (`className`, `interfaceName`). The other arguments may be null. A leading "lib"
    /// of `sharedLibrary` is dropped. `info`, a record on the heap, becomes the entry's record
    /// when the pair is new, and must be the entry's own record when it is known; the dictionary
    /// takes it over when it accepts it. Null without a message for a null name and after
    /// _DeleteDictionary.
    static LYRSysTSInfoDic* AddDictionaryTS(const char* className, const char* interfaceName,
                                            const char* sharedLibrary, const char* itfLeaf,
                                            const char* extendedBy,
                                            LYRSysTSInterfaceFactory creator,
                                            LYRSysTSInfoDic* info);

    /// Registers (`clsid`, `iid`) with its creator; `info` as above, and one that has a class name
    /// must be that of an entry by names, through which it is freed. Null without a message for a
    /// null creator and after _DeleteDictionary.
    static LYRSysTSInfoDic* AddDictionaryTS(const GUID& clsid, const GUID& iid,
                                            LYRSysTSInterfaceFactory creator,
                                            LYRSysTSInfoDic* info);

    /// Registers one record under its ids, if there is a creator, and under its names, whichever of
    /// the two pairs is whole; `load` as in the queries. Each of the two is refused, and said so,
    /// on its own; the result is that of the names when they are whole. Others see no state between
    /// the two. Null without a message when neither pair is whole.
    static LYRSysTSInfoDic* AddDictionaryTS(const GUID* clsid, const GUID* iid,
                                            const char* className, const char* interfaceName,
                                            const char* sharedLibrary,
                                            LYRSysTSInterfaceFactory creator, short load);

    /// The record registered under the pair, or null. With `load` 1 the dictionary files are read
    /// first, if they have not been. Null for a null name and after _DeleteDictionary.
    static LYRSysTSInfoDic* QueryDictionary(const char* className, const char* interfaceName,
                                            short load);
    static LYRSysTSInfoDic* QueryDictionary(const GUID& clsid, const GUID& iid, short load);

    /// The meta-object registered for the class, or null. By class id, the dictionary files are
    /// read first; by name, never.
    static LYRSysTSMetaClass* QueryMetaObject(const char* className);
    static LYRSysTSMetaClass* QueryMetaObject(const GUID& clsid);

    /// The name of an interface: that of the meta-object registered under `iid`, else the one
    /// that the dictionary files give; null when neither knows it. The files are read first.
    static const char* GetInterfaceName(const GUID& iid);

    /// The one meta-object of the class `name`, made on the first request and then recorded by
    /// name and by class id. `type`, `clsid` (null: an id is made up) and `base` (null: none)
    /// count only when it is made; `extendedName`, when not null, names a class that it extends,
    /// which an extension's meta-object takes note of on every call. Null for a null name and for
    /// "LYRNull". Lives until LYRSysTSMetaClassBase::Destruct. After _DeleteDictionary every call
    /// makes a new one, recorded nowhere. Throws std::bad_alloc; the next call goes on from there.
    static LYRSysTSMetaClass* FindOrCreateMetaObject(const char* name, LYRSysTSTypeOfClass type,
                                                     const GUID* clsid, LYRSysTSMetaClass* base,
                                                     const char* extendedName);

    /// A class id that this process has not made up before, interned; null when memory is out.
    static const GUID* _CreateCLSID();

    /// Reads the dictionary files of the directories of LYRDictionaryPath and of the folders that
    /// AddFolder has been given, once per process. Says on standard error when that variable is not
    /// set and no folder is named, or when LYRDictionaryNoPathNoFallback is set; then nothing is
    /// read, and the next request asks again. What there is to say about the files is said when all
    /// have been read, with the lock free. When memory or file descriptors run out on the way, the
    /// next request reads them again, which may repeat messages. Returns at once when the calling
    /// thread is reading them.
    static void EnsureInitDictionary();

    /// Names a folder of dictionary files, to be read after the directories of LYRDictionaryPath
    /// and the folders named before; as there, a file of which another has the name is passed over.
    /// Then that variable need not be set. A relative folder is one of the program or library that
    /// the address `origin` belongs to, as LYRThrLibraryManager::FolderOf says. S_OK, also for a
    /// folder that is named already or has been read, at any time. For another E_FAIL, said on
    /// standard error, once the files have been read or are being read, and when the folder cannot
    /// be told; E_FAIL when memory is out.
    static HRESULT AddFolder(const char* folder, const void* origin);

    /// For scandir: 1 for the name of a dictionary file, 0 for any other and for null.
    static int _FileSelection(const dirent* entry);

    /// 1 for a name that ends in ".dicts", 2 for ".iidts", 3 for ".clsidts", with a character at
    /// least before it; 0 for any other and for null.
    static int _SelectionByExt(const char* name);

    /// 1 when the running scan has met a file of that name; otherwise 0, and it has met it now.
    /// Outside a scan 0, with nothing noted.
    static int _DicoIsAlreadyRead(const char* name);

    /// Hands the lines of the file to the reader. E_FAIL for a null argument, a file that cannot
    /// be opened or read to its end (said on standard error) and after the first line that the
    /// reader refuses.
    static HRESULT _ReadDictionary(const char* path, LYRSysTSDictionaryReader* reader);

    /// The bucket (0 to 4095) of a pair; the same for both orders of it. A null counts as empty.
    static int _ComputeHashKey(const char* a, const char* b);
    static int _ComputeHashKey(const GUID* a, const GUID* b);

    /// Makes the tables ready for use, once; later calls do nothing.
    static void _ClearDictionary();

    /// Frees every record and closes the dictionary for good: every later addition and query
    /// returns null. For the shut-down of the application; records handed out before are gone.
    /// Does nothing before the first use of the tables.
    static void _DeleteDictionary();

private:
    friend struct lyr::internal::DictionaryTables;

    /// Makes the meta-object and records it by id and by name. What the dictionary refuses, such as
    /// the id of another class, is left out and counted. Throws std::bad_alloc with nothing
    /// recorded: a meta-object that is not recorded would be made once more by the next call.
    LYR_LOCAL static LYRSysTSMetaClass* CreateMetaObject(const char* name, LYRSysTSTypeOfClass type,
                                                         const GUID* clsid, LYRSysTSMetaClass* base,
                                                         lyr::internal::Refusals& refusals)
        LYR_REQUIRES(GetGlobalDicoMutex());

    static DicEntryLink* _dicByName[4096] LYR_GUARDED_BY(GetGlobalDicoMutex());
    static DicEntryLink* _dicByGUID[4096] LYR_GUARDED_BY(GetGlobalDicoMutex());
    static std::atomic<bool> _DictionaryCleared;
    static std::atomic<bool> _DictionaryDeleted;
    static ReadFileLink** _readDicFiles LYR_GUARDED_BY(GetGlobalDicoMutex());
};
