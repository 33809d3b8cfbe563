#include "LYRSysTSMetaClassImpl.h"

#include "LYRSysTSDicoGUID.h"
#include "metaclass/DictionarySearch.h"
#include "metaclass/FactoryCache.h"
#include "metaclass/PlainTable.h"
#include "support/GuidBytes.h"
#include "support/Listener.h"
#include "support/MutexGuard.h"
#include "support/Notes.h"

#include <algorithm>
#include <new>

IUnknown* _LYRSysTSNoSuchInterface(LYRSysTSBaseUnknown*, unsigned char) {
    return nullptr;
}

int LYRSysTSCompare(const void* a, const void* b) {
    if (a == nullptr || b == nullptr) return -1;
    const auto left = lyr::internal::GuidWords(*static_cast<const FactoryEntry*>(a)->interfaceId);
    const auto right = lyr::internal::GuidWords(*static_cast<const FactoryEntry*>(b)->interfaceId);
    if (left == right) return 0;
    return left < right ? -1 : 1;
}

namespace {

using lyr::internal::SearchResult;

bool IsBefore(const FactoryEntry& a, const FactoryEntry& b) {
    return LYRSysTSCompare(&a, &b) < 0;
}

/// The answer of a table, which does not change any more.
SearchResult ForGood(LYRSysTSInterfaceFactory answer) {
    return {answer != _LYRSysTSNoSuchInterface ? answer : nullptr, false};
}

}  // namespace

LYRSysTSMetaClassImpl::LYRSysTSMetaClassImpl(const GUID* clsid, const char* name,
                                             LYRSysTSMetaClass* base)
    : LYRSysTSMetaClassBase(clsid, name, base),
      _factoryTable(nullptr),
      _factoryCount(0),
      _factoryCapacity(0) {}

LYRSysTSMetaClassImpl::~LYRSysTSMetaClassImpl() {
    if (_factoryCount != 0) lyr::internal::FactoryCache::Forget(this);
    delete[] _factoryTable;
}

LYRSysTSInterfaceFactory LYRSysTSMetaClassImpl::_GetInterfaceFactory(const GUID& iid) {
    const lyr::internal::MutexGuard guard(_mutex);
    return Find(iid);
}

int LYRSysTSMetaClassImpl::_AddInterfaceFactory(const GUID& iid, LYRSysTSInterfaceFactory factory) {
    if (factory == nullptr || _classId == nullptr) return 1;
    const lyr::internal::MutexGuard guard(_mutex);
    Insert(iid, factory);
    // The cache may hold what was the answer so far.
    if (const LYRSysTSInterfaceFactory answer = Find(iid))
        lyr::internal::FactoryCache::Keep(this, iid, answer);
    return 1;
}

LYRSysTSInterfaceFactory LYRSysTSMetaClassImpl::_QueryFromDictionary(const GUID& iid) const {
    return lyr::internal::DictionarySearch(*this, iid, nullptr).Run().factory;
}

LYRSysTSInterfaceFactory LYRSysTSMetaClassImpl::QueryDerivationInterfaceFactory(const GUID& iid) {
    LYRSysTSInterfaceFactory answer = lyr::internal::FactoryCache::Find(this, iid);
    if (answer == nullptr) answer = Recall(iid);
    return (answer != nullptr ? ForGood(answer) : SearchHeard(iid)).factory;
}

SearchResult LYRSysTSMetaClassImpl::SearchHeard(const GUID& iid) {
    lyr::internal::Listener* const listener = lyr::internal::CurrentListener();
    if (listener == nullptr) return Search(iid, nullptr);
    lyr::internal::Notes notes(lyr::internal::Notes::Mode::kRequest, {_className, &iid});
    const SearchResult found = Search(iid, &notes);
    listener->AfterSearch(*this, iid, notes, found.factory != nullptr);
    return found;
}

SearchResult LYRSysTSMetaClassImpl::Ask(const GUID& iid, lyr::internal::Notes* notes) {
    LYRSysTSInterfaceFactory answer = lyr::internal::FactoryCache::Find(this, iid);
    if (answer == nullptr) answer = Recall(iid);
    if (answer == nullptr) return Search(iid, notes);
    if (notes != nullptr) NoteAnswer(answer, *notes);
    // Whoever explains an absence goes the road once more that has led to it.
    const bool isAbsence = answer == _LYRSysTSNoSuchInterface;
    if (isAbsence && notes != nullptr && !notes->MayRemember()) Search(iid, notes);
    return ForGood(answer);
}

SearchResult LYRSysTSMetaClassImpl::Search(const GUID& iid, lyr::internal::Notes* notes) {
    SearchResult found = lyr::internal::DictionarySearch(*this, iid, notes).Run();
    if (found.factory == nullptr) {
        const SearchResult ofBase = AskBase(iid, notes);
        found = {ofBase.factory, found.mayPass || ofBase.mayPass};
    }
    if (notes != nullptr && !notes->MayRemember()) return found;
    if (found.mayPass) {
        const LYRSysTSInterfaceFactory ofAnother = _GetInterfaceFactory(iid);
        return ofAnother != nullptr ? ForGood(ofAnother) : found;
    }
    const LYRSysTSInterfaceFactory absence = _LYRSysTSNoSuchInterface;
    return ForGood(RememberFirst(iid, found.factory != nullptr ? found.factory : absence));
}

SearchResult LYRSysTSMetaClassImpl::AskBase(const GUID& iid, lyr::internal::Notes* notes) {
    if (_baseMeta == nullptr) return {};
    if (notes != nullptr) {
        notes->Add(lyr::Cause::kBaseClass, _className, nullptr, nullptr, _baseMeta->IsA());
    }
    auto* const base = dynamic_cast<LYRSysTSMetaClassImpl*>(_baseMeta);
    if (notes != nullptr) {
        if (base != nullptr && lyr::internal::IsPlainTable(*base)) return base->Ask(iid, notes);
        if (base != nullptr) notes->Add(lyr::Cause::kOwnSearch, _baseMeta->IsA(), nullptr);
        // It may remember, load and call anything.
        if (!notes->MayRemember()) return {};
    }
    const LYRSysTSInterfaceFactory factory = _baseMeta->QueryDerivationInterfaceFactory(iid);
    // What a base with a table does not remember, it may answer otherwise the next time.
    const bool remembers =
        base == nullptr || base->_classId == nullptr || base->_GetInterfaceFactory(iid) != nullptr;
    return {factory, !remembers};
}

void LYRSysTSMetaClassImpl::NoteAnswer(LYRSysTSInterfaceFactory answer,
                                       lyr::internal::Notes& notes) const {
    const bool isAbsence = answer == _LYRSysTSNoSuchInterface;
    notes.Add(isAbsence ? lyr::Cause::kKnownAbsence : lyr::Cause::kKnownAnswer, _className,
              nullptr);
}

LYRSysTSInterfaceFactory LYRSysTSMetaClassImpl::Recall(const GUID& iid) {
    const lyr::internal::MutexGuard guard(_mutex);
    const LYRSysTSInterfaceFactory answer = Find(iid);
    // Under the lock, so that the cache never holds what the table has said before.
    if (answer != nullptr) lyr::internal::FactoryCache::Keep(this, iid, answer);
    return answer;
}

LYRSysTSInterfaceFactory LYRSysTSMetaClassImpl::RememberFirst(const GUID& iid,
                                                              LYRSysTSInterfaceFactory answer) {
    if (_classId == nullptr) return answer;
    const lyr::internal::MutexGuard guard(_mutex);
    if (const LYRSysTSInterfaceFactory known = Find(iid)) return known;
    Insert(iid, answer);
    return answer;
}

LYRSysTSInterfaceFactory LYRSysTSMetaClassImpl::Find(const GUID& iid) const {
    const FactoryEntry key{&iid, nullptr};
    const FactoryEntry* const table = _factoryTable;
    const FactoryEntry* const end = table + _factoryCount;
    const FactoryEntry* entry = std::lower_bound(table, end, key, IsBefore);
    LYRSysTSInterfaceFactory answer = nullptr;
    for (; entry != end && !IsBefore(key, *entry); ++entry) {
        if (entry->factory != _LYRSysTSNoSuchInterface) return entry->factory;
        answer = entry->factory;
    }
    return answer;
}

void LYRSysTSMetaClassImpl::Insert(const GUID& iid, LYRSysTSInterfaceFactory factory) {
    if (!HasRoom()) return;
    const GUID* const interned = LYRSysTSDicoGUID::AddGUIDInDico(&iid);
    if (interned == nullptr) return;
    const FactoryEntry entry{interned, factory};
    FactoryEntry* const end = _factoryTable + _factoryCount;
    FactoryEntry* const place = std::upper_bound(_factoryTable, end, entry, IsBefore);
    std::move_backward(place, end, end + 1);
    *place = entry;
    ++_factoryCount;
}

bool LYRSysTSMetaClassImpl::HasRoom() {
    constexpr unsigned kGrowth = 4;
    constexpr unsigned kMaxCapacity = 65532;
    if (_factoryCount < _factoryCapacity) return true;
    if (_factoryCapacity == kMaxCapacity) return false;
    const unsigned capacity = _factoryCount + kGrowth;
    auto* const table = new (std::nothrow) FactoryEntry[capacity]();
    if (table == nullptr) return false;
    std::copy_n(_factoryTable, _factoryCount, table);
    delete[] _factoryTable;
    _factoryTable = table;
    _factoryCapacity = static_cast<std::uint16_t>(capacity);
    return true;
}
