#include "dictionary/Addition.h"

#include "dictionary/Messages.h"
#include "registries/Intern.h"
#include "support/MutexGuard.h"
#include "support/SharedField.h"
#include "support/Shortage.h"
#include "support/Text.h"

#include <cstring>
#include <new>

namespace lyr::internal {

namespace {

constexpr const char* LYRSysTSInfoDic::*kTexts[] = {
    &LYRSysTSInfoDic::className, &LYRSysTSInfoDic::interfaceName, &LYRSysTSInfoDic::sharedLibrary,
    &LYRSysTSInfoDic::itfLeaf,   &LYRSysTSInfoDic::extendedBy,
};
constexpr const GUID* LYRSysTSInfoDic::*kIds[] = {&LYRSysTSInfoDic::clsid, &LYRSysTSInfoDic::iid};

const char* WithoutLib(const char* library) {
    if (library == nullptr || std::strncmp(library, "lib", 3) != 0) return library;
    return library + 3;
}

}  // namespace

Addition::Addition(const char* className, const char* interfaceName, const char* sharedLibrary,
                   const char* itfLeaf, const char* extendedBy, LYRSysTSInterfaceFactory creator)
    : _isByName(true),
      _hash(DictionaryTables::Hash(className, interfaceName)),
      _bucket(LYRSysTSDictionary::_ComputeHashKey(className, interfaceName)),
      _creator(creator) {
    _given.className = className;
    _given.interfaceName = interfaceName;
    _given.sharedLibrary = WithoutLib(sharedLibrary);
    _given.itfLeaf = itfLeaf;
    _given.extendedBy = extendedBy;
}

Addition::Addition(const GUID& clsid, const GUID& iid, LYRSysTSInterfaceFactory creator)
    : _isByName(false),
      _hash(DictionaryTables::Hash(clsid, iid)),
      _bucket(LYRSysTSDictionary::_ComputeHashKey(&clsid, &iid)),
      _creator(creator) {
    _given.clsid = &clsid;
    _given.iid = &iid;
}

LYRSysTSInfoDic* Addition::Existing() const {
    if (!_isByName) return DictionaryTables::Find(_hash, *_given.clsid, *_given.iid);
    return DictionaryTables::Find(_hash, _given.className, _given.interfaceName);
}

EntryTable& Addition::Table() const {
    return _isByName ? DictionaryTables::byName : DictionaryTables::byGUID;
}

bool Addition::Prepare(LYRSysTSInfoDic* info) {
    LYRSysTSInfoDic* const existing = Existing();
    LYRSysTSInfoDic* const record = ChooseRecord(existing, info);
    if (record == nullptr || ContradictsRecord(*record) || !InternMissing(*record)) return false;
    _isNew = existing == nullptr;
    if (_isNew && !Table().Reserve()) throw std::bad_alloc();
    _record = record;
    return true;
}

LYRSysTSInfoDic* Addition::ChooseRecord(LYRSysTSInfoDic* existing, LYRSysTSInfoDic* info) {
    if (existing != nullptr) return info == nullptr || info == existing ? existing : nullptr;
    if (info != nullptr) return info;
    _newRecord = std::make_unique<LYRSysTSInfoDic>();
    return _newRecord.get();
}

bool Addition::ContradictsRecord(const LYRSysTSInfoDic& record) const {
    for (const auto field : kIds) {
        if (record.*field == nullptr || _given.*field == nullptr) continue;
        if (*(record.*field) != *(_given.*field)) return true;
    }
    for (const auto field : kTexts) {
        if (record.*field == nullptr || _given.*field == nullptr) continue;
        if (!SameText(record.*field, _given.*field)) return true;
    }
    const LYRSysTSInterfaceFactory stored = record.creator;
    return stored != nullptr && _creator != nullptr && stored != _creator;
}

bool Addition::InternMissing(const LYRSysTSInfoDic& record) {
    for (const auto field : kIds) {
        if (record.*field == nullptr) _missing.*field = InternGUID(_given.*field);
    }
    for (const auto field : kTexts) {
        if (record.*field != nullptr || _given.*field == nullptr) continue;
        _missing.*field = InternText(_given.*field);
        if (_missing.*field == nullptr) return false;
    }
    return true;
}

void Addition::Commit() {
    if (_record == nullptr) return;
    for (const auto field : kIds) {
        if (_missing.*field != nullptr) StoreShared(_record->*field, _missing.*field);
    }
    for (const auto field : kTexts) {
        if (_missing.*field != nullptr) StoreShared(_record->*field, _missing.*field);
    }
    // Last, so that whoever sees the creator without the lock also sees its library.
    if (_creator != nullptr && _record->creator == nullptr) _record->creator = _creator;
    if (_isNew) Table().Append(_bucket, _hash, _record);
    static_cast<void>(_newRecord.release());
}

Refusals::~Refusals() {
    for (; count > 0; --count) Say("Problem allocating structure dico\n");
}

void PairedAddition::Make(Refusals& refusals) {
    if (!byIds.Prepare(byNames.Existing())) ++refusals.count;
    if (!byNames.Prepare(byIds.Record())) ++refusals.count;
    // The names bring the library, the ids a creator.
    byNames.Commit();
    byIds.Commit();
}

LYRSysTSInfoDic* Add(Addition& addition, LYRSysTSInfoDic* info) {
    if (DictionaryTables::Deleted()) return nullptr;
    DictionaryTables::EnsureCleared();
    Refusals refusals;
    const MutexGuard guard(*GetGlobalDicoMutex());
    if (DictionaryTables::Deleted()) return nullptr;
    const auto prepare = [&]()
                             LYR_REQUIRES(GetGlobalDicoMutex()) { return addition.Prepare(info); };
    if (RefuseOnShortage(false, prepare)) {
        addition.Commit();
    } else {
        ++refusals.count;
    }
    return addition.Record();
}

}  // namespace lyr::internal
