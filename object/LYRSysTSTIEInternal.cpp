#include "LYRSysTSTIEInternal.h"

#include "object/ImplementationObject.h"
#include "object/ObjectAccess.h"

namespace {

/// The object that counts the references to a kept extension; null for any other object.
LYRSysTSBaseUnknown* CountingObject(const LYRSysTSBaseUnknown& object) {
    LYRSysTSMetaClassExt* const extension = lyr::ToExtension(object.GetMetaObject());
    if (extension == nullptr || extension->GetExtensionType() != KeptExtension) return nullptr;
    return lyr::ObjectAccess::Extended(object);
}

/// The locks under which a TIE counts. The object that a kept extension extends comes first: it
/// keeps the extension alive, and its own operations take the locks in this order too.
class TieLock {
public:
    explicit TieLock(LYRSysTSBaseUnknown& object)
        : _counting(CountingObject(object)), _implementation(&object) {}

    void ObjectsAreGone() {
        _implementation.ObjectIsGone();
        _counting.ObjectIsGone();
    }

private:
    lyr::ObjectLock _counting;
    lyr::ObjectLock _implementation;
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

int LYRSysTSTIEInternal::Tie_AddRef(int& tieCount, LYRSysTSBaseUnknown* object) {
    if (object == nullptr) return 0;
    const TieLock lock(*object);
    object->AddRef();
    return ++tieCount;
}

int LYRSysTSTIEInternal::Tie_Release(int& tieCount, LYRSysTSBaseUnknown*& object,
                                     unsigned char& mustDelete) {
    mustDelete = 0;
    if (object == nullptr) return 0;
    int count = 0;
    {
        TieLock lock(*object);
        count = --tieCount;
        if (object->Release() == 0) lock.ObjectsAreGone();
    }
    // Above 0, the TIE may be gone by now: another thread's release.
    if (count != 0) return count;
    object = nullptr;
    mustDelete = 1;
    return 0;
}
