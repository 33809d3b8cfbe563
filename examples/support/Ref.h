#pragma once

#include "IUnknown.h"

#include <memory>

struct Releaser {
    void operator()(IUnknown* interface) const { interface->Release(); }
};

/// One counted reference, given back when the Ref goes out of scope.
template <class Interface>
using Ref = std::unique_ptr<Interface, Releaser>;

/// The interface `iid` of `object`, which is not null; null when the object does not have it.
template <class Interface>
Ref<Interface> Query(IUnknown* object, const GUID& iid) {
    void* out = nullptr;
    if (object->QueryInterface(iid, &out) != S_OK) return nullptr;
    // What arrives in `out` is an IUnknown*; only as such may it be cast on.
    return Ref<Interface>(static_cast<Interface*>(static_cast<IUnknown*>(out)));
}
