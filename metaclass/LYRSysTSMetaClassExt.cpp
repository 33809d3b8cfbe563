#include "LYRSysTSMetaClassExt.h"

#include "metaclass/ToExtension.h"
#include "registries/Intern.h"
#include "support/MutexGuard.h"
#include "support/Shortage.h"

#include <algorithm>

LYRSysTSMetaClassExt::LYRSysTSMetaClassExt(const GUID* clsid, const char* name,
                                           LYRSysTSMetaClass* base, LYRSysTSTypeOfClass type)
    : LYRSysTSMetaClassImpl(clsid, name, base),
      _extendedClasses(nullptr),
      _extendedCount(0),
      _extendedCapacity(0),
      _typeOfClass(type),
      _lacksNames(false),
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
    TryToList(className);
}

bool LYRSysTSMetaClassExt::TryToList(const char* className) {
    const bool isDone = lyr::internal::RefuseOnShortage(false, [&] {
        const char* const interned = lyr::internal::InternText(className);
        if (interned != nullptr) List(interned);
        return true;
    });
    if (isDone) return true;
    const lyr::internal::MutexGuard guard(_extMutex);
    _lacksNames = true;
    return false;
}

void LYRSysTSMetaClassExt::List(const char* internedName) {
    const lyr::internal::MutexGuard guard(_extMutex);
    if (Lists(internedName)) return;
    MakeRoom();
    _extendedClasses[_extendedCount] = internedName;
    ++_extendedCount;
}

void LYRSysTSMetaClassExt::MakeRoom() {
    constexpr std::int32_t kGrowth = 3;
    if (_extendedCount < _extendedCapacity) return;
    const std::int32_t capacity = _extendedCapacity + kGrowth;
    auto** const classes = new const char*[static_cast<std::size_t>(capacity)];
    std::copy_n(_extendedClasses, _extendedCount, classes);
    delete[] _extendedClasses;
    _extendedClasses = classes;
    _extendedCapacity = capacity;
}

bool LYRSysTSMetaClassExt::LacksNames() {
    const lyr::internal::MutexGuard guard(_extMutex);
    return _lacksNames;
}

bool LYRSysTSMetaClassExt::_IsExtensionOf(const char* internedName) {
    if (internedName == nullptr) return false;
    const lyr::internal::MutexGuard guard(_extMutex);
    return Lists(internedName);
}

bool LYRSysTSMetaClassExt::IsExtensionOf(const LYRSysTSMetaClass* meta) {
    return meta != nullptr && _IsExtensionOf(meta->IsA());
}

bool LYRSysTSMetaClassExt::Lists(const char* internedName) const {
    const char* const* const end = _extendedClasses + _extendedCount;
    return std::find(static_cast<const char* const*>(_extendedClasses), end, internedName) != end;
}

void LYRSysTSMetaClassExt::AddExtendedComponent(LYRSysTSMetaClass* meta, const char* className) {
    if (auto* const extension = lyr::internal::ToExtension(meta))
        extension->SetExtensionOf(className);
}
