#include "Addition.h"

#include "registries/Intern.h"
#include "support/MemoryShortage.h"
#include "support/MutexGuard.h"
#include "support/Text.h"

#include <cstdio>
#include <cstring>
#include <new>

namespace lyr {

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
    : _table(DictionaryTables::byName),
      _hash(DictionaryTables::Hash(className, interfaceName)),
      _bucket(LYRSysTSDictionary::_ComputeHashKey(className, interfaceName)) {
    _wanted.className = className;
    _wanted.interfaceName = interfaceName;
    _wanted.sharedLibrary = WithoutLib(sharedLibrary);
    _wanted.itfLeaf = itfLeaf;
    _wanted.extendedBy = extendedBy;
    _wanted.creator = creator;
}

Addition::Addition(const GUID& clsid, const GUID& iid, LYRSysTSInterfaceFactory creator)
    : _table(DictionaryTables::byGUID),
      _hash(DictionaryTables::Hash(clsid, iid)),
      _bucket(LYRSysTSDictionary::_ComputeHashKey(&clsid, &iid)) {
    _wanted.clsid = &clsid;
    _wanted.iid = &iid;
    _wanted.creator = creator;
}

bool Addition::Prepare(LYRSysTSInfoDic* info) {
    LYRSysTSInfoDic* const existing = FindEntry();
    LYRSysTSInfoDic* const record = ChooseRecord(existing, info);
    if (record == nullptr || ContradictsRecord(*record) || !InternMissing(*record)) return false;
    if (existing == nullptr) {
        _newLink = std::make_unique<DicEntryLink>(DicEntryLink{record, nullptr});
        if (!_table.index.Reserve()) throw std::bad_alloc();
    }
    _record = record;
    return true;
}

LYRSysTSInfoDic* Addition::FindEntry() const {
    if (_wanted.className == nullptr) {
        return DictionaryTables::Find(_hash, *_wanted.clsid, *_wanted.iid);
    }
    return DictionaryTables::Find(_hash, _wanted.className, _wanted.interfaceName);
}

LYRSysTSInfoDic* Addition::ChooseRecord(LYRSysTSInfoDic* existing, LYRSysTSInfoDic* info) {
    if (existing != nullptr) return info == nullptr || info == existing ? existing : nullptr;
    if (info != nullptr) return info;
    _newRecord = std::make_unique<LYRSysTSInfoDic>();
    return _newRecord.get();
}

bool Addition::ContradictsRecord(const LYRSysTSInfoDic& record) const {
    for (const auto field : kIds) {
        const GUID* const stored = LoadShared(record.*field);
        if (stored != nullptr && _wanted.*field != nullptr && *stored != *(_wanted.*field)) {
            return true;
        }
    }
    for (const auto field : kTexts) {
        const char* const stored = LoadShared(record.*field);
        if (stored != nullptr && _wanted.*field != nullptr && !SameText(stored, _wanted.*field)) {
            return true;
        }
    }
    const LYRSysTSInterfaceFactory stored = record.creator;
    const LYRSysTSInterfaceFactory wanted = _wanted.creator;
    return stored != nullptr && wanted != nullptr && stored != wanted;
}

bool Addition::InternMissing(const LYRSysTSInfoDic& record) {
    for (const auto field : kIds) {
        const bool isSet = LoadShared(record.*field) != nullptr;
        _wanted.*field = isSet ? nullptr : InternGUID(_wanted.*field);
    }
    for (const auto field : kTexts) {
        const char* const wanted = _wanted.*field;
        const bool isSet = LoadShared(record.*field) != nullptr;
        _wanted.*field = isSet ? nullptr : InternText(wanted);
        if (!isSet && wanted != nullptr && _wanted.*field == nullptr) return false;
    }
    return true;
}

void Addition::Commit() {
    if (_record == nullptr) return;
    for (const auto field : kIds) {
        if (_wanted.*field != nullptr) StoreShared(_record->*field, _wanted.*field);
    }
    for (const auto field : kTexts) {
        if (_wanted.*field != nullptr) StoreShared(_record->*field, _wanted.*field);
    }
    // Last, so that whoever sees the creator without the lock also sees its library.
    const LYRSysTSInterfaceFactory creator = _wanted.creator;
    if (creator != nullptr && _record->creator == nullptr) _record->creator = creator;
    if (_newLink != nullptr) _table.Append(_bucket, _hash, _newLink.release());
    static_cast<void>(_newRecord.release());
}

LYRSysTSInfoDic* Add(Addition& addition, LYRSysTSInfoDic* info) {
    if (DictionaryTables::Deleted()) return nullptr;
    DictionaryTables::EnsureCleared();
    try {
        const MutexGuard guard(*GetGlobalDicoMutex());
        if (DictionaryTables::Deleted()) return nullptr;
        if (addition.Prepare(info)) addition.Commit();
    } catch (const std::bad_alloc&) {
        ++memoryShortages;
    }
    if (addition.Record() == nullptr) SayRefused();
    return addition.Record();
}

void SayRefused() {
    std::fputs("Problem allocating structure dico\n", stderr);
}

}  // namespace lyr
