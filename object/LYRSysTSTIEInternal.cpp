#include "LYRSysTSTIEInternal.h"

#include "object/ImplementationObject.h"
#include "object/ObjectAccess.h"

namespace {

/// How the implementation object of a TIE counts: an extension together with the object that it
/// extends.
struct Counting {
    LYRSysTSBaseUnknown* extended = nullptr;  // null for a component object
    bool isKept = false;

    explicit Counting(const LYRSysTSBaseUnknown& object) {
        LYRSysTSMetaClassExt* const extension = lyr::ToExtension(object.GetMetaObject());
        if (extension == nullptr) return;
        extended = lyr::ObjectAccess::Extended(object);
        isKept = extension->GetExtensionType() == KeptExtension;
    }
};

}  // namespace

HRESULT LYRSysTSTIEInternal::Tie_Construct(LYRSysTSBaseUnknown* object,
                                           LYRSysTSMetaClass* metaClass,
                                           LYRSysTSBaseUnknown* (*create)(),
                                           LYRSysTSBaseUnknown*& result) {
    result = nullptr;
    result = lyr::FindOrMakeImplementation(object, metaClass, create);
    return result != nullptr ? S_OK : E_FAIL;
}

HRESULT LYRSysTSTIEInternal::Tie_Query(LYRSysTSBaseUnknown* object, const GUID& iid, void** out) {
    if (out != nullptr) *out = nullptr;
    return object != nullptr ? object->QueryInterface(iid, out) : E_UNEXPECTED;
}

// Everywhere the extended object's lock is taken before its extension's: a factory that runs under
// the one may use a TIE over the other.

int LYRSysTSTIEInternal::Tie_AddRef(int& tieCount, LYRSysTSBaseUnknown* object) {
    if (object == nullptr) return 0;
    const Counting counting(*object);
    const lyr::ObjectLock extendedLock(counting.extended);
    const lyr::ObjectLock lock(object);
    object->AddRef();
    return ++tieCount;
}

int LYRSysTSTIEInternal::Tie_Release(int& tieCount, LYRSysTSBaseUnknown*& object,
                                     unsigned char& mustDelete) {
    mustDelete = 0;
    if (object == nullptr) return 0;
    const Counting counting(*object);
    // A transient extension's release may be the last one of the object that it extends. That
    // must not go while its lock is held here.
    LYRSysTSBaseUnknown* const guarded = counting.isKept ? nullptr : counting.extended;
    if (guarded != nullptr) guarded->AddRef();
    int count = 0;
    {
        lyr::ObjectLock extendedLock(counting.extended);
        lyr::ObjectLock lock(object);
        count = --tieCount;
        if (object->Release() == 0) {
            lock.ObjectIsGone();
            if (counting.isKept) extendedLock.ObjectIsGone();
        }
    }
    if (guarded != nullptr) guarded->Release();
    // Above 0, the TIE may be gone by now: another thread's release.
    if (count != 0) return count;
    object = nullptr;
    mustDelete = 1;
    return 0;
}
