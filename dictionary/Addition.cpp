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

constexpr const char* LYRSysTSInfoDic::*kTextFields[] = {
    &LYRSysTSInfoDic::className, &LYRSysTSInfoDic::interfaceName, &LYRSysTSInfoDic::sharedLibrary,
    &LYRSysTSInfoDic::itfLeaf,   &LYRSysTSInfoDic::extendedBy,
};
constexpr const char* kTextNames[] = {"class", "interface", "library", "leaf interface",
                                      "extension"};
constexpr const GUID* LYRSysTSInfoDic::*kIdFields[] = {&LYRSysTSInfoDic::clsid,
                                                       &LYRSysTSInfoDic::iid};

const char* WithoutLib(const char* library) {
    if (library == nullptr || std::strncmp(library, "lib", 3) != 0) return library;
    return library + 3;
}

}  // namespace

Addition::Addition(const char* className, const char* interfaceName, const char* sharedLibrary,
                   const char* itfLeaf, const char* extendedBy, LYRSysTSInterfaceFactory creator)
    : _texts{HashedText(className), HashedText(interfaceName),
             HashedText(WithoutLib(sharedLibrary)), HashedText(itfLeaf), HashedText(extendedBy)},
      _ids{},
      _creator(creator),
      _isByName(true),
      _hash(DictionaryTables::Hash(_texts[0], _texts[1])),
      _bucket(LYRSysTSDictionary::_ComputeHashKey(className, interfaceName)) {}

Addition::Addition(const GUID& clsid, const GUID& iid, LYRSysTSInterfaceFactory creator)
    : _texts{},
      _ids{&clsid, &iid},
      _creator(creator),
      _isByName(false),
      _hash(DictionaryTables::Hash(clsid, iid)),
      _bucket(LYRSysTSDictionary::_ComputeHashKey(&clsid, &iid)) {}

LYRSysTSInfoDic* Addition::Existing() const {
    if (!_isByName) return DictionaryTables::Find(_hash, *_ids[0], *_ids[1]);
    return DictionaryTables::Find(_hash, _texts[0].text, _texts[1].text);
}

EntryTable& Addition::Table() const {
    return _isByName ? DictionaryTables::byName : DictionaryTables::byGUID;
}

bool Addition::Prepare(LYRSysTSInfoDic* info) {
    LYRSysTSInfoDic* const existing = Existing();
    _isNew = existing == nullptr;
    if (_isNew && !Table().Reserve(_bucket, _hash)) throw std::bad_alloc();
    if (existing != nullptr && info != nullptr && info != existing) {
        _contradiction.emplace().field = "record";
        return false;
    }
    LYRSysTSInfoDic* const known = existing != nullptr ? existing : info;
    if (known != nullptr) {
        const Contradiction contradiction = FindContradiction(*known);
        if (contradiction.field != nullptr) _contradiction = contradiction;
        if (_contradiction) return false;
    }
    LYRSysTSInfoDic* const record = known != nullptr ? known : DictionaryTables::UnusedRecord();
    if (!InternMissing(*record)) return false;
    _record = record;
    return true;
}

Contradiction Addition::FindContradiction(const LYRSysTSInfoDic& record) const {
    Contradiction contradiction;
    for (std::size_t i = 0; i < kIds; ++i) {
        const GUID* const stored = record.*kIdFields[i];
        if (stored == nullptr || _ids[i] == nullptr || *stored == *_ids[i]) continue;
        contradiction.field = i == 0 ? "class id" : "interface id";
        return contradiction;
    }
    for (std::size_t i = 0; i < kTexts; ++i) {
        const char* const stored = record.*kTextFields[i];
        const char* const given = _texts[i].text;
        if (stored == nullptr || given == nullptr || SameText(stored, given)) continue;
        contradiction.field = kTextNames[i];
        contradiction.known = stored;
        contradiction.given = given;
        return contradiction;
    }
    const LYRSysTSInterfaceFactory stored = record.creator;
    const bool isOther = stored != nullptr && _creator != nullptr && stored != _creator;
    if (isOther) contradiction.field = "function that makes it";
    return contradiction;
}

bool Addition::InternMissing(const LYRSysTSInfoDic& record) {
    for (std::size_t i = 0; i < kIds; ++i) {
        if (_ids[i] == nullptr || record.*kIdFields[i] != nullptr) continue;
        _missingIds[i] = InternGUID(_ids[i]);
    }
    for (std::size_t i = 0; i < kTexts; ++i) {
        if (_texts[i].text == nullptr || record.*kTextFields[i] != nullptr) continue;
        _missingTexts[i] = InternText(_texts[i]);
        if (_missingTexts[i] == nullptr) return false;
    }
    return true;
}

void Addition::Commit() {
    if (_record == nullptr) return;
    for (std::size_t i = 0; i < kIds; ++i) {
        if (_missingIds[i] != nullptr) StoreShared(_record->*kIdFields[i], _missingIds[i]);
    }
    for (std::size_t i = 0; i < kTexts; ++i) {
        if (_missingTexts[i] != nullptr) StoreShared(_record->*kTextFields[i], _missingTexts[i]);
    }
    // Last, so that whoever sees the creator without the lock also sees its library.
    if (_creator != nullptr && _record->creator == nullptr) _record->creator = _creator;
    if (_isNew) Table().Append(_bucket, _hash, _record);
    if (_record == DictionaryTables::unused) DictionaryTables::unused = nullptr;
}

Contradiction Addition::Refused() const {
    Contradiction contradiction = _contradiction.value_or(Contradiction());
    contradiction.className = _texts[0].text;
    contradiction.interfaceName = _texts[1].text;
    contradiction.clsid = _ids[0];
    contradiction.iid = _ids[1];
    return contradiction;
}

Refusals::~Refusals() {
    for (int i = 0; i < _count; ++i) {
        Say("Problem allocating structure dico\n");
        if (Listener* const listener = CurrentListener()) listener->OnContradiction(*_reasons[i]);
    }
}

void PairedAddition::Make(Refusals& refusals) {
    if (!byIds.Prepare(byNames.Existing())) refusals.Add(byIds);
    if (!byNames.Prepare(byIds.Record())) refusals.Add(byNames);
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
        refusals.Add(addition);
    }
    return addition.Record();
}

}  // namespace lyr::internal
