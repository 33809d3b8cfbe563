#include "LYRSysTSBaseUnknown.h"

#include "LYRSysTSDictionary.h"
#include "LYRSysTSKnownIds.h"
#include "object/ObjectAccess.h"
#include "support/Listener.h"

#include <memory>

constinit LYRSysTSMetaClass* LYRSysTSBaseUnknown::meta_object = nullptr;

LYRSysTSBaseUnknown::LYRSysTSBaseUnknown(unsigned char threadSafe)
    : _mutex(threadSafe != 0 ? 0 : 1), _refCount(1), _extensionLink(nullptr), _lockDepth(0) {}

LYRSysTSBaseUnknown::~LYRSysTSBaseUnknown() {
    while (_lockDepth > 0) Unlock();
    lyr::internal::ObjectAccess::SetChain(*this, nullptr);
}

namespace {

/// The result of a request for which the factory gave null; the listener hears of it.
[[gnu::cold]] HRESULT RefusedByFactory(const LYRSysTSMetaClass& asked, const GUID& iid) {
    if (lyr::internal::Listener* const listener = lyr::internal::CurrentListener()) {
        listener->OnFactoryGaveNull(asked, iid);
    }
    return E_NOINTERFACE;
}

}  // namespace

void LYRSysTSBaseUnknown::Lock() {
    lyr::internal::ObjectAccess::Lock(*this);
}

void LYRSysTSBaseUnknown::Unlock() {
    lyr::internal::ObjectAccess::Unlock(*this);
}

HRESULT LYRSysTSBaseUnknown::QueryInterface(const GUID& iid, void** out) {
    if (out == nullptr) return E_FAIL;
    *out = nullptr;
    lyr::internal::ObjectLock lock(this);
    if (_refCount == 0) return E_UNEXPECTED;
    LYRSysTSMetaClass* const metaObject = GetMetaObject();
    LYRSysTSMetaClassBase* const base = metaObject ? metaObject->ToMetaClassBase() : nullptr;
    if (base == nullptr) return E_NOINTERFACE;

    if (base->CastToMetaExtension() != nullptr) {
        LYRSysTSBaseUnknown* const extended = lyr::internal::ObjectAccess::Extended(*this);
        lock.Release();
        return extended != nullptr ? extended->QueryInterface(iid, out) : E_UNEXPECTED;
    }

    IUnknown* answer = this;
    if (iid != IID_IUnknown && iid != CLSID_LYRSysTSBaseUnknown) {
        const LYRSysTSInterfaceFactory factory = base->QueryDerivationInterfaceFactory(iid);
        if (factory == nullptr) return E_NOINTERFACE;
        const unsigned char threadSafe = lyr::internal::ObjectAccess::IsThreadSafe(*this) ? 1 : 0;
        answer = factory(this, threadSafe);
        if (answer == nullptr) return RefusedByFactory(*base, iid);
    }
    ++_refCount;
    *out = answer;
    return S_OK;
}

std::uint32_t LYRSysTSBaseUnknown::AddRef() {
    const lyr::internal::Counting counting(*this);
    if (counting.by == lyr::internal::CountedBy::kExtended) return counting.extended->AddRef();
    const std::uint32_t count = RaiseCount();
    if (counting.by == lyr::internal::CountedBy::kBoth) counting.extended->AddRef();
    return count;
}

std::uint32_t LYRSysTSBaseUnknown::Release() {
    const lyr::internal::Counting counting(*this);
    if (counting.by == lyr::internal::CountedBy::kExtended) return counting.extended->Release();
    const std::uint32_t count = LowerCount();
    if (count == 0) {
        if (counting.by == lyr::internal::CountedBy::kItself) DeleteChain();
        delete this;
    }
    if (counting.by == lyr::internal::CountedBy::kBoth) counting.extended->Release();
    return count;
}

std::uint32_t LYRSysTSBaseUnknown::RaiseCount() {
    const lyr::internal::ObjectLock lock(this);
    return ++_refCount;
}

std::uint32_t LYRSysTSBaseUnknown::LowerCount() {
    const lyr::internal::ObjectLock lock(this);
    return --_refCount;
}

// The references to a kept extension are counted on this object, so its own count is not asked. One
// that is deleted may have another one made for the object: the chain is looked at until it is
// empty.
void LYRSysTSBaseUnknown::DeleteChain() {
    while (LYRSysTSChainExtension* link = lyr::internal::ObjectAccess::Chain(*this)) {
        lyr::internal::ObjectAccess::SetChain(*this, nullptr);
        while (link != nullptr) {
            const std::unique_ptr<LYRSysTSChainExtension> current(link);
            link = current->GetNextChainExtension();
            LYRSysTSBaseUnknown* extension = nullptr;
            if (current->GetAssociatedExtension(extension) == S_OK) delete extension;
        }
    }
}

LYRSysTSMetaClass* LYRSysTSBaseUnknown::MetaObject() {
    static LYRSysTSMetaClass* const s_meta_object = [] {
        meta_object = LYRSysTSDictionary::FindOrCreateMetaObject(
            "LYRSysTSBaseUnknown", PlainClass, &CLSID_LYRSysTSBaseUnknown, nullptr, nullptr);
        return meta_object;
    }();
    return s_meta_object;
}

const char* LYRSysTSBaseUnknown::ClassName() {
    return MetaObject()->IsA();
}

const GUID* LYRSysTSBaseUnknown::ClassId() {
    return MetaObject()->GetClassId();
}

LYRSysTSMetaClass* LYRSysTSBaseUnknown::GetMetaObject() const {
    return MetaObject();
}

const char* LYRSysTSBaseUnknown::IsA() const {
    const LYRSysTSMetaClass* const metaObject = GetMetaObject();
    return metaObject != nullptr ? metaObject->IsA() : nullptr;
}

int LYRSysTSBaseUnknown::IsAKindOf(const char* className) const {
    const LYRSysTSMetaClass* const metaObject = GetMetaObject();
    return metaObject != nullptr ? metaObject->IsAKindOf(className) : 0;
}
