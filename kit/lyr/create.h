#pragma once

#include "LYRSysTSCreateExternalObject.h"
#include "LYRSysTSCreateInstance.h"
#include "lyr/ref.h"

namespace lyr {
inline namespace v1 {

/// The interface `I` of a new object of the class, whose library is loaded if need be. Null when
/// there is no such class, library or interface, when no object could be made, and for a null name.
template <class I>
[[nodiscard]] Ref<I> TryCreate(const char* className) {
    void* const made = LYRSysTSCreateExternalObject(className, nullptr, nullptr);
    return Take(detail::FromVoid<IUnknown>(made)).template TryAs<I>();
}

/// The same by class id.
template <class I>
[[nodiscard]] Ref<I> TryCreate(const CLSID& clsid) {
    void* out = nullptr;
    const HRESULT result = LYRSysTSCreateInstance(clsid, IdOf<I>(), &out);
    return Take(result == S_OK ? detail::FromVoid<I>(out) : nullptr);
}

/// The interface `I` of a new object of the class. Throws Failure instead of giving null.
template <class I>
[[nodiscard]] Ref<I> Create(const char* className) {
    LYR_KIT_THROWS(I)
    void* const made = LYRSysTSCreateExternalObject(className, nullptr, nullptr);
    if (made == nullptr) detail::ThrowNotCreated(className);
    return Take(detail::FromVoid<IUnknown>(made)).template As<I>();
}

/// The same by class id.
template <class I>
[[nodiscard]] Ref<I> Create(const CLSID& clsid) {
    LYR_KIT_THROWS(I)
    void* out = nullptr;
    const HRESULT result = LYRSysTSCreateInstance(clsid, IdOf<I>(), &out);
    if (result != S_OK || out == nullptr) {
        detail::ThrowNotCreated(clsid, IdOf<I>(), result);
    }
    return Take(detail::FromVoid<I>(out));
}

}  // namespace v1
}  // namespace lyr
