#include "LYRSysTSMetaClassBase.h"

#include "registries/Intern.h"
#include "support/Text.h"

constinit LYRSysTSMetaClassBase* sHeadMeta = nullptr;

LYRSysTSMetaClassBase::LYRSysTSMetaClassBase(const GUID* clsid, const char* name,
                                             LYRSysTSMetaClass* base)
    : _mutex(0),
      _classId(nullptr),
      _className(nullptr),
      _baseMeta(base != nullptr ? base->ToMetaClassBase() : nullptr),
      _nextMeta(sHeadMeta) {
    sHeadMeta = this;
    try {
        _className = lyr::internal::InternText(name);
        _classId = lyr::internal::InternGUID(clsid);
    } catch (...) {
        sHeadMeta = _nextMeta;
        throw;
    }
}

LYRSysTSMetaClassBase::~LYRSysTSMetaClassBase() = default;

const char* LYRSysTSMetaClassBase::IsA() const {
    return _className;
}

const GUID* LYRSysTSMetaClassBase::GetClassId() const {
    return _classId;
}

LYRSysTSMetaClass* LYRSysTSMetaClassBase::GetMetaObjectOfBaseClass() const {
    return _baseMeta;
}

LYRSysTSMetaClassBase* LYRSysTSMetaClassBase::ToMetaClassBase() {
    return this;
}

int LYRSysTSMetaClassBase::IsAKindOf(const char* name) const {
    if (name == nullptr) return 0;
    for (const auto* current = this; current != nullptr; current = current->_baseMeta) {
        const char* const className = current->_className;
        if (className != nullptr && lyr::internal::SameText(className, name)) return 1;
    }
    return 0;
}

int LYRSysTSMetaClassBase::IsAKindOf(const GUID& id) const {
    for (const auto* current = this; current != nullptr; current = current->_baseMeta) {
        if (current->_classId != nullptr && *current->_classId == id) return 1;
    }
    return 0;
}

LYRSysTSInterfaceFactory LYRSysTSMetaClassBase::QueryDerivationInterfaceFactory(const GUID&) {
    return nullptr;
}

LYRSysTSMetaClassExt* LYRSysTSMetaClassBase::CastToMetaExtension() {
    return nullptr;
}

void LYRSysTSMetaClassBase::Destruct() {
    const LYRSysTSMetaClassBase* current = sHeadMeta;
    while (current != nullptr) {
        const LYRSysTSMetaClassBase* const next = current->_nextMeta;
        delete current;
        current = next;
    }
    sHeadMeta = nullptr;
}

void LYRSysTSMetaClassBase::Discard(LYRSysTSMetaClassBase* newest) {
    sHeadMeta = newest->_nextMeta;
    delete newest;
}
