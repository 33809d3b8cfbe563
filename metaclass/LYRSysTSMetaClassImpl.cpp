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
    if (!_HasRoom()) return 1;
    const GUID* const interned = LYRSysTSDicoGUID::AddGUIDInDico(&iid);
    if (interned == nullptr) return 1;

    _factoryTable[_factoryCount] = {interned, factory};
    ++_factoryCount;
    std::qsort(_factoryTable, _factoryCount, sizeof(FactoryEntry), LYRSysTSCompare);
    return 1;
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
    LYRSysTSInterfaceFactory known = lyr::FactoryCache::Find(this, iid);
    if (known == nullptr) {
        known = _GetInterfaceFactory(iid);
        if (known != nullptr) lyr::FactoryCache::Keep(this, iid, known);
    }
    if (known == _LYRSysTSNoSuchInterface) return nullptr;
    if (known != nullptr) return known;

    const unsigned shortages = lyr::memoryShortages;
    LYRSysTSInterfaceFactory found = _QueryFromDictionary(iid);
    if (found == nullptr && _baseMeta != nullptr) {
        found = _baseMeta->QueryDerivationInterfaceFactory(iid);
    }
    if (found != nullptr) {
        _AddInterfaceFactory(iid, found);
    } else if (lyr::memoryShortages == shortages) {
        _AddInterfaceFactory(iid, _LYRSysTSNoSuchInterface);
    }
    return found;
}
