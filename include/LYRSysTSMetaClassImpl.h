#pragma once

#include "LYRSysTSMetaClassBase.h"

#include <cstdint>

namespace lyr::internal {
class ExplainedSearch;
class Notes;
struct SearchResult;
}  // namespace lyr::internal

/// One remembered answer: the interned id of an interface and its factory.
struct FactoryEntry {
    const GUID* interfaceId;
    LYRSysTSInterfaceFactory factory;
};

/// The factory that a table remembers for an interface that nobody implements. Always null.
LYR_EXPORT IUnknown* _LYRSysTSNoSuchInterface(LYRSysTSBaseUnknown* object,
                                              unsigned char threadSafe);

/// The order of two FactoryEntry by the ids that they point at, each id as four unsigned 32-bit
/// little-endian words: -1, 0 or 1; -1 when an argument is null. Fit for qsort and bsearch.
LYR_EXPORT int LYRSysTSCompare(const void* a, const void* b);

/// The meta-object of a class whose interfaces are built by factories. It remembers every answer,
/// found or absent, in a sorted table.
class LYR_EXPORT LYRSysTSMetaClassImpl : public LYRSysTSMetaClassBase {
public:
    /// As LYRSysTSMetaClassBase.
    LYRSysTSMetaClassImpl(const GUID* clsid, const char* name, LYRSysTSMetaClass* base);
    LYRSysTSMetaClassImpl(const LYRSysTSMetaClassImpl&) = delete;
    LYRSysTSMetaClassImpl& operator=(const LYRSysTSMetaClassImpl&) = delete;
    ~LYRSysTSMetaClassImpl() override;

    /// Looks in the table, then in the dictionary and the library that it names, then asks the
    /// base class, and remembers the answer. Of several searches at the same time the first answer
    /// is that of all. An absence, and the base's answer in its place, are not remembered when
    /// memory or file descriptors ran out, or while a library was loading, which may be what brings
    /// the interface; a request beside the load of an extension's library waits for that, a second
    /// at most.
    LYRSysTSInterfaceFactory QueryDerivationInterfaceFactory(const GUID& iid) override;

    /// What the table remembers for `iid`, _LYRSysTSNoSuchInterface included; null for nothing.
    LYRSysTSInterfaceFactory _GetInterfaceFactory(const GUID& iid);

    /// Remembers `factory` for `iid`. Always 1. Nothing is remembered for a null factory, in a
    /// class without an id, in a table of 65,532 entries, and when memory is out. Of several for
    /// one id the first is the answer, but a factory comes before an absence.
    int _AddInterfaceFactory(const GUID& iid, LYRSysTSInterfaceFactory factory);

    /// Searches the dictionary alone, by ids and then by names, loading the library of an
    /// extension that is still missing. A factory that an entry point supplied is recorded in the
    /// dictionary. Null when nothing is found; no lock is held while a library loads.
    LYRSysTSInterfaceFactory _QueryFromDictionary(const GUID& iid) const;

private:
    friend class lyr::internal::ExplainedSearch;

    /// What the cache and the table remember, else what a search finds, which is then remembered
    /// unless it may pass. `notes` are null as a rule.
    LYR_LOCAL lyr::internal::SearchResult Ask(const GUID& iid, lyr::internal::Notes* notes);
    LYR_LOCAL lyr::internal::SearchResult AskBase(const GUID& iid, lyr::internal::Notes* notes);
    LYR_LOCAL lyr::internal::SearchResult Search(const GUID& iid, lyr::internal::Notes* notes);

    /// Search, heard by the listener if there is one.
    LYR_LOCAL lyr::internal::SearchResult SearchHeard(const GUID& iid);

    /// Notes what the table remembers.
    LYR_LOCAL void NoteAnswer(LYRSysTSInterfaceFactory answer, lyr::internal::Notes& notes) const;

    /// What the table remembers, or null; the cache remembers it from now on.
    LYR_LOCAL LYRSysTSInterfaceFactory Recall(const GUID& iid);

    /// Remembers what a search has found, unless another one, which may have seen less or more of
    /// the dictionary, was faster: then that one's is the answer.
    LYR_LOCAL LYRSysTSInterfaceFactory RememberFirst(const GUID& iid,
                                                     LYRSysTSInterfaceFactory answer);

    LYR_LOCAL LYRSysTSInterfaceFactory Find(const GUID& iid) const LYR_REQUIRES(_mutex);
    LYR_LOCAL void Insert(const GUID& iid, LYRSysTSInterfaceFactory factory) LYR_REQUIRES(_mutex);
    LYR_LOCAL bool HasRoom() LYR_REQUIRES(_mutex);

    FactoryEntry* _factoryTable LYR_GUARDED_BY(_mutex);
    std::uint16_t _factoryCount LYR_GUARDED_BY(_mutex);
    std::uint16_t _factoryCapacity LYR_GUARDED_BY(_mutex);
};
