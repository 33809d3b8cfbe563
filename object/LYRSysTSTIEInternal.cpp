#include "LYRSysTSTIEInternal.h"

#include "object/ImplementationObject.h"
#include "object/ObjectAccess.h"

namespace {

using lyr::internal::CountedBy;
using lyr::internal::Counting;

// An object's lock is taken before the locks of its extensions: a factory that runs under it may
// use a TIE over any of them. So a kept extension's comes after that of the object which keeps it
// and counts for it; and an extension that counts on another object does so with no lock held.

/// Gives back one count of the TIE and of its object. The TIE's new count; above 0 the TIE may be
/// gone by the time: another thread's release.
int ReleaseBoth(int& tieCount, LYRSysTSBaseUnknown* object) {
    const Counting counting(*object);
    int count = 0;
    if (counting.by == CountedBy::kBoth) {
        {
            const lyr::internal::ObjectLock lock(object);
            count = --tieCount;
        }
        object->Release();
        return count;
    }
    lyr::internal::ObjectLock keeperLock(counting.extended);
    lyr::internal::ObjectLock lock(object);
    count = --tieCount;
    if (object->Release() == 0) {
        lock.ObjectIsGone();
        keeperLock.ObjectIsGone();
    }
    return count;
}

}  // namespace

HRESULT LYRSysTSTIEInternal::Tie_Construct(LYRSysTSBaseUnknown* object,
                                           LYRSysTSMetaClass* metaClass,
                                           LYRSysTSBaseUnknown* (*create)(),
                                           LYRSysTSBaseUnknown*& result) {
    result = nullptr;
    result = lyr::internal::FindOrMakeImplementation(object, metaClass, create);
    return result != nullptr ? S_OK : E_FAIL;
}

HRESULT LYRSysTSTIEInternal::Tie_Query(LYRSysTSBaseUnknown* object, const GUID& iid, void** out) {
    if (out != nullptr) *out = nullptr;
    return object != nullptr ? object->QueryInterface(iid, out) : E_UNEXPECTED;
}

int LYRSysTSTIEInternal::Tie_AddRef(int& tieCount, LYRSysTSBaseUnknown* object) {
    if (object == nullptr) return 0;
    const Counting counting(*object);
    if (counting.by == CountedBy::kBoth) {
        object->AddRef();
        const lyr::internal::ObjectLock lock(object);
        return ++tieCount;
    }
    const lyr::internal::ObjectLock keeperLock(counting.extended);
    const lyr::internal::ObjectLock lock(object);
    object->AddRef();
    return ++tieCount;
}

int LYRSysTSTIEInternal::Tie_Release(int& tieCount, LYRSysTSBaseUnknown*& object,
                                     unsigned char& mustDelete) {
    mustDelete = 0;
    if (object == nullptr) return 0;
    const int count = ReleaseBoth(tieCount, object);
    if (count != 0) return count;
    object = nullptr;
    mustDelete = 1;
    return 0;
}
