#pragma once

#include "LYRSysTSDictionary.h"
#include "dictionary/PairKey.h"
#include "support/AddressCast.h"
#include "support/IndexedTable.h"
#include "support/MutexGuard.h"
#include "support/TextHash.h"

#include <cstddef>

namespace lyr::internal {

/// One of the two tables of the dictionary, with what stands beside it.
struct EntryTable {
    DicEntryLink** heads;
    IndexedTable<LYRSysTSInfoDic, DicEntryLink, kPairBuckets, Readers::kUnderLock> beside = {};

    /// Makes sure that one more Append has room; false when memory is out. What that one will write
    /// to is on its way from memory then.
    bool Reserve(int bucket, std::size_t hash) {
        if (!beside.Reserve()) return false;
        beside.Prefetch(static_cast<std::size_t>(bucket), hash);
        return true;
    }

    /// Hangs a new record, after Reserve.
    void Append(int bucket, std::size_t hash, LYRSysTSInfoDic* record) {
        beside.Append(heads, static_cast<std::size_t>(bucket), hash, record);
    }

    /// Empties the table, handing each record to `dispose`, which may want the lock held as well.
    template <typename Dispose>
    void Clear(Dispose dispose) LYR_REQUIRES(GetGlobalDicoMutex()) {
        const auto disposeOf = [&](const DicEntryLink* link)
                                   LYR_NO_THREAD_SAFETY_ANALYSIS { dispose(link->info); };
        beside.Clear(heads, disposeOf);
    }
};

/// The dictionary's own state, for the sources that work on it.
struct DictionaryTables {
    static EntryTable byName LYR_GUARDED_BY(GetGlobalDicoMutex());
    static EntryTable byGUID LYR_GUARDED_BY(GetGlobalDicoMutex());

    /// The records that the dictionary makes itself, others being handed to it, and the one that no
    /// table has yet, or null.
    static NodePool<LYRSysTSInfoDic> records LYR_GUARDED_BY(GetGlobalDicoMutex());
    static LYRSysTSInfoDic* unused LYR_GUARDED_BY(GetGlobalDicoMutex());

    /// A record with every field null, for whoever hangs it first. Throws std::bad_alloc.
    static LYRSysTSInfoDic* UnusedRecord() LYR_REQUIRES(GetGlobalDicoMutex());
    /// Ends the life of a record that no table has any more.
    static void Dispose(LYRSysTSInfoDic* record) LYR_REQUIRES(GetGlobalDicoMutex());

    /// The hash of a pair in its index. It has nothing to do with the buckets.
    static std::size_t Hash(const HashedText& className, const HashedText& interfaceName);
    static std::size_t Hash(const GUID& clsid, const GUID& iid);

    /// What `read` makes of the record registered under the pair, or of null, while the lock is
    /// held. With `load` 1 the dictionary files are read first.
    template <typename Read>
    static auto ReadEntry(const char* className, const char* interfaceName, short load, Read read) {
        if (className == nullptr || interfaceName == nullptr || Deleted()) return read(nullptr);
        if (load == 1) LYRSysTSDictionary::EnsureInitDictionary();
        const std::size_t hash = Hash(HashedText(className), HashedText(interfaceName));
        const MutexGuard guard(*GetGlobalDicoMutex());
        return read(Deleted() ? nullptr : Find(hash, className, interfaceName));
    }
    template <typename Read>
    static auto ReadEntry(const GUID& clsid, const GUID& iid, short load, Read read) {
        if (Deleted()) return read(nullptr);
        if (load == 1) LYRSysTSDictionary::EnsureInitDictionary();
        const std::size_t hash = Hash(clsid, iid);
        const MutexGuard guard(*GetGlobalDicoMutex());
        return read(Deleted() ? nullptr : Find(hash, clsid, iid));
    }

    /// The record registered under the pair with this hash, or null.
    static LYRSysTSInfoDic* Find(std::size_t hash, const char* className, const char* interfaceName)
        LYR_REQUIRES(GetGlobalDicoMutex());
    static LYRSysTSInfoDic* Find(std::size_t hash, const GUID& clsid, const GUID& iid)
        LYR_REQUIRES(GetGlobalDicoMutex());

    /// For ReadEntry: the record itself, and the meta-object that one holds.
    static LYRSysTSInfoDic* Record(LYRSysTSInfoDic* record) { return record; }
    static LYRSysTSMetaClass* MetaObject(const LYRSysTSInfoDic* record) {
        return record != nullptr ? ToMetaObject(record->creator) : nullptr;
    }

    /// Whether _DeleteDictionary has closed the dictionary.
    static bool Deleted() { return LYRSysTSDictionary::_DictionaryDeleted; }

    /// Makes the tables ready, unless they are.
    static void EnsureCleared() {
        if (!LYRSysTSDictionary::_DictionaryCleared) LYRSysTSDictionary::_ClearDictionary();
    }

    /// The names of the files that the running scan has met; null outside a scan.
    static ReadFileLink**& MetNames() LYR_REQUIRES(GetGlobalDicoMutex()) {
        return LYRSysTSDictionary::_readDicFiles;
    }
};

}  // namespace lyr::internal
