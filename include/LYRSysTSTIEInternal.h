#pragma once

#include "GUID.h"
#include "HRESULT.h"
#include "LYRExport.h"

class LYRSysTSBaseUnknown;
class LYRSysTSMetaClass;

/// What a TIE, an interface object that delegates to an implementation object, is made of. The TIE
/// keeps a count of its own, which only Tie_AddRef and Tie_Release change.
class LYR_EXPORT LYRSysTSTIEInternal {
public:
    LYRSysTSTIEInternal() = delete;

    /// Finds or builds the implementation object of the class `metaClass` for `object`: the object
    /// itself when it is of that class; its one instance of a kept extension, which `create` makes
    /// on the first request and the object owns; a new instance, from `create`, of a transient
    /// extension. No count is raised: a new instance carries the count 1 of its constructor.
    /// `create` runs under the object's lock and may return null; what it throws passes through,
    /// with the lock free and the object as it was.
    /// S_OK with a non-null `result`. E_FAIL with null:
    /// - a null object or meta-object, or an object of another class;
    /// - an extension of neither kind, or one to be made with a null `create` or without memory;
    /// - a `create` whose instance has a class that is no extension of that kind: it is released;
    /// - a kept extension of an object that is itself an extension.
    static HRESULT Tie_Construct(LYRSysTSBaseUnknown* object, LYRSysTSMetaClass* metaClass,
                                 LYRSysTSBaseUnknown* (*create)(), LYRSysTSBaseUnknown*& result);

    /// The TIE's QueryInterface: that of `object`. E_UNEXPECTED for a null object; E_FAIL for a
    /// null `out`.
    static HRESULT Tie_Query(LYRSysTSBaseUnknown* object, const GUID& iid, void** out);

    /// The TIE's AddRef: raises its count and the object's. The TIE's new count; 0, with nothing
    /// changed, for a null object.
    static int Tie_AddRef(int& tieCount, LYRSysTSBaseUnknown* object);

    /// The TIE's Release: lowers its count and the object's. The TIE's new count; at 0 `object` is
    /// null and `mustDelete` 1, and the TIE deletes itself. 0 with `mustDelete` 0, and nothing
    /// changed, for a null object.
    static int Tie_Release(int& tieCount, LYRSysTSBaseUnknown*& object, unsigned char& mustDelete);
};
