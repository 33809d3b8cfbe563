#include "LYRSysTSMetaClassImpl.h"

#include "LYRSysTSDicoGUID.h"
#include "metaclass/FactoryCache.h"
#include "support/GuidBytes.h"
#include "support/MemoryShortage.h"
#include "support/MutexGuard.h"

#include <algorithm>
#include <cstdlib>
#include <new>

IUnknown* _LYRSysTSNoSuchInterface(LYRSysTSBaseUnknown*, unsigned char) {
    return nullptr;
}

int LYRSysTSCompare(const void* a, const void* b) {
    if (a == nullptr || b == nullptr) return -1;
    const auto left = lyr::GuidWords(*static_cast<const FactoryEntry*>(a)->interfaceId);
    const auto right = lyr::GuidWords(*static_cast<const FactoryEntry*>(b)->interfaceId);
    if (left == right) return 0;
    return left < right ? -1 : 1;
}

LYRSysTSMetaClassImpl::LYRSysTSMetaClassImpl(const GUID* clsid, const char* name,
                                             LYRSysTSMetaClass* base)
    : LYRSysTSMetaClassBase(clsid, name, base),
      _factoryTable(nullptr),
      _factoryCount(0),
      _factoryCapacity(0) {}

LYRSysTSMetaClassImpl::~LYRSysTSMetaClassImpl() {
    if (_factoryCount != 0) lyr::FactoryCache::Forget(this);
    delete[] _factoryTable;
}

LYRSysTSInterfaceFactory LYRSysTSMetaClassImpl::_GetInterfaceFactory(const GUID& iid) {
    const lyr::MutexGuard guard(_mutex);
    return _Find(iid);
}

LYRSysTSInterfaceFactory LYRSysTSMetaClassImpl::_Find(const GUID& iid) const {
    if (_factoryCount == 0) return nullptr;
    const FactoryEntry key{&iid, nullptr};
    const void* const found =
        std::bsearch(&key, _factoryTable, _factoryCount, sizeof(FactoryEntry), LYRSysTSCompare);
    return found != nullptr ? static_cast<const FactoryEntry*>(found)->factory : nullptr;
}

int LYRSysTSMetaClassImpl::_AddInterfaceFactory(const GUID& iid, LYRSysTSInterfaceFactory factory) {
    if (factory == nullptr || _classId == nullptr) return 1;
    const lyr::MutexGuard guard(_mutex);
    _Append(iid, factory);
    return 1;
}

LYRSysTSInterfaceFactory LYRSysTSMetaClassImpl::_RememberFirst(const GUID& iid,
                                                               LYRSysTSInterfaceFactory answer) {
    if (_classId == nullptr) return answer;
    const lyr::MutexGuard guard(_mutex);
    if (const LYRSysTSInterfaceFactory known = _Find(iid)) return known;
    _Append(iid, answer);
    return answer;
}

void LYRSysTSMetaClassImpl::_Append(const GUID& iid, LYRSysTSInterfaceFactory factory) {
    if (!_HasRoom()) return;
    const GUID* const interned = LYRSysTSDicoGUID::AddGUIDInDico(&iid);
    if (interned == nullptr) return;
    _factoryTable[_factoryCount] = {interned, factory};
    ++_factoryCount;
    std::qsort(_factoryTable, _factoryCount, sizeof(FactoryEntry), LYRSysTSCompare);
}

bool LYRSysTSMetaClassImpl::_HasRoom() {
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

LYRSysTSInterfaceFactory LYRSysTSMetaClassImpl::QueryDerivationInterfaceFactory(const GUID& iid) {
    LYRSysTSInterfaceFactory answer = lyr::FactoryCache::Find(this, iid);
    if (answer == nullptr) {
        answer = _GetInterfaceFactory(iid);
        if (answer != nullptr) lyr::FactoryCache::Keep(this, iid, answer);
    }
    if (answer == nullptr) answer = _Search(iid);
    return answer != _LYRSysTSNoSuchInterface ? answer : nullptr;
}

LYRSysTSInterfaceFactory LYRSysTSMetaClassImpl::_Search(const GUID& iid) {
    const unsigned shortages = lyr::memoryShortages;
    LYRSysTSInterfaceFactory found = _QueryFromDictionary(iid);
    if (found == nullptr && _baseMeta != nullptr) {
        found = _baseMeta->QueryDerivationInterfaceFactory(iid);
    }
    if (found != nullptr) return _RememberFirst(iid, found);
    if (lyr::memoryShortages != shortages) return _GetInterfaceFactory(iid);
    return _RememberFirst(iid, _LYRSysTSNoSuchInterface);
}
