#include "LYRSysTSMetaClassExt.h"

#include "LYRSysTSDicoString.h"
#include "metaclass/ToExtension.h"
#include "support/MutexGuard.h"

#include <algorithm>
#include <new>

LYRSysTSMetaClassExt::LYRSysTSMetaClassExt(const GUID* clsid, const char* name,
                                           LYRSysTSMetaClass* base, LYRSysTSTypeOfClass type)
    : LYRSysTSMetaClassImpl(clsid, name, base),
      _extendedClasses(nullptr),
      _extendedCount(0),
      _extendedCapacity(0),
      _typeOfClass(type),
      _extMutex(0) {}

LYRSysTSMetaClassExt::~LYRSysTSMetaClassExt() {
    delete[] _extendedClasses;
}

LYRSysTSMetaClassExt* LYRSysTSMetaClassExt::CastToMetaExtension() {
    return this;
}

LYRSysTSTypeOfClass LYRSysTSMetaClassExt::GetExtensionType() {
    return _typeOfClass;
}

void LYRSysTSMetaClassExt::SetExtensionOf(const char* className) {
    const char* const interned = LYRSysTSDicoString::AddStringInDico(className);
    if (interned == nullptr) return;

    const lyr::MutexGuard guard(_extMutex);
    if (_Lists(interned) || !_HasRoom()) return;
    _extendedClasses[_extendedCount] = interned;
    ++_extendedCount;
}

bool LYRSysTSMetaClassExt::_HasRoom() {
    constexpr std::int32_t kGrowth = 3;
    if (_extendedCount < _extendedCapacity) return true;
    const std::int32_t capacity = _extendedCapacity + kGrowth;
    auto** const classes = new (std::nothrow) const char*[static_cast<std::size_t>(capacity)];
    if (classes == nullptr) return false;
    std::copy_n(_extendedClasses, _extendedCount, classes);
    delete[] _extendedClasses;
    _extendedClasses = classes;
    _extendedCapacity = capacity;
    return true;
}

bool LYRSysTSMetaClassExt::_IsExtensionOf(const char* internedName) {
    if (internedName == nullptr) return false;
    const lyr::MutexGuard guard(_extMutex);
    return _Lists(internedName);
}

bool LYRSysTSMetaClassExt::IsExtensionOf(const LYRSysTSMetaClass* meta) {
    return meta != nullptr && _IsExtensionOf(meta->IsA());
}

bool LYRSysTSMetaClassExt::_Lists(const char* internedName) const {
    const char* const* const end = _extendedClasses + _extendedCount;
    return std::find(static_cast<const char* const*>(_extendedClasses), end, internedName) != end;
}

void LYRSysTSMetaClassExt::AddExtendedComponent(LYRSysTSMetaClass* meta, const char* className) {
    if (auto* const extension = lyr::ToExtension(meta)) extension->SetExtensionOf(className);
}
