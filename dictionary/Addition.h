#pragma once

#include "dictionary/DictionaryTables.h"
#include "support/Listener.h"

#include <optional>

namespace lyr::internal {

/// One addition to one table of the dictionary. It goes in two steps under one hold of the lock:
/// Prepare, once, does all that can be refused or fail, and changes nothing that others see; Commit
/// cannot fail. Destroying it between the two leaves everything as it was.
class Addition {
public:
    /// By names and by ids. The arguments must outlive the object; the names and ids that make the
    /// key are not null, the others may be.
    Addition(const char* className, const char* interfaceName, const char* sharedLibrary,
             const char* itfLeaf, const char* extendedBy, LYRSysTSInterfaceFactory creator);
    Addition(const GUID& clsid, const GUID& iid, LYRSysTSInterfaceFactory creator);

    /// The record that is registered under the key by now, or null.
    LYRSysTSInfoDic* Existing() const LYR_REQUIRES(GetGlobalDicoMutex());

    /// False when the dictionary refuses the addition; throws std::bad_alloc. `info`, which may be
    /// null, is the record to work on; it may be one that another prepared addition is to make.
    bool Prepare(LYRSysTSInfoDic* info) LYR_REQUIRES(GetGlobalDicoMutex());

    /// The record that the addition works on; null until it is prepared, and when it was refused.
    LYRSysTSInfoDic* Record() const { return _record; }

    /// What was said before, when it was refused for that.
    Contradiction Refused() const;

    /// Makes a prepared addition; without one it does nothing.
    void Commit() LYR_REQUIRES(GetGlobalDicoMutex());

private:
    /// What the record says otherwise; its field is null when it says nothing otherwise.
    Contradiction FindContradiction(const LYRSysTSInfoDic& record) const;
    bool InternMissing(const LYRSysTSInfoDic& record);

    EntryTable& Table() const LYR_REQUIRES(GetGlobalDicoMutex());

    // The fields of a record as the caller gives them, null where it gives nothing, and of these,
    // interned, those that the record still lacks.
    static constexpr std::size_t kTexts = 5;
    static constexpr std::size_t kIds = 2;
    const HashedText _texts[kTexts];
    const GUID* const _ids[kIds];
    const LYRSysTSInterfaceFactory _creator;
    const char* _missingTexts[kTexts] = {};
    const GUID* _missingIds[kIds] = {};

    std::optional<Contradiction> _contradiction;

    const bool _isByName;
    const std::size_t _hash;
    const int _bucket;
    LYRSysTSInfoDic* _record = nullptr;
    bool _isNew = false;  // the table does not have it yet
};

/// Says at its end that the dictionary has refused additions, each of them, also when its owner
/// fails later on. It stands before the lock is taken, so that it speaks after it; the texts and
/// ids that were to be added outlive it.
class Refusals {
public:
    /// At most two.
    void Add(const Addition& addition) { _reasons[_count++] = addition.Refused(); }

    Refusals() = default;
    ~Refusals();
    Refusals(const Refusals&) = delete;
    Refusals& operator=(const Refusals&) = delete;

private:
    std::optional<Contradiction> _reasons[2];
    int _count = 0;
};

/// The additions of one record by ids and by names, made together: others see no state between the
/// two, and a creator never without the library that comes with it.
struct PairedAddition {
    Addition byIds;
    Addition byNames;

    /// Prepares both, the ids on the record that the names already have, the names on the record of
    /// the ids, and then makes them. A half that is refused is left out and counted in `refusals`.
    /// Throws std::bad_alloc with nothing else changed.
    void Make(Refusals& refusals) LYR_REQUIRES(GetGlobalDicoMutex());
};

/// Makes one addition under the lock. Its record; null, and a word on standard error, when it is
/// refused or memory is out; null without one when the dictionary is closed.
LYRSysTSInfoDic* Add(Addition& addition, LYRSysTSInfoDic* info);

}  // namespace lyr::internal
