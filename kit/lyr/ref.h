#pragma once

#include "IUnknown.h"
#include "LYRSysTSBaseUnknown.h"
#include "lyr/failure.h"
#include "lyr/interface.h"

#include <cstddef>
#include <cstdint>
#include <string>  // std::hash, for fewer lines than <functional>
#include <type_traits>
#include <utility>

// What is refused with a sentence: by clang where it is written, and by g++, which has no such
// attribute that works in templates, in the function's body. So std::is_constructible is wrong
// about such a function under g++.
#define LYR_KIT_PLAIN_POINTER                                                             \
    "lyr: a plain pointer is no Ref, since it does not say whose count it is; take that " \
    "over with lyr::Take(pointer), or take one of its own with lyr::Share(pointer)"
#if defined(__clang__)
#define LYR_KIT_LIFETIMEBOUND [[clang::lifetimebound]]
#define LYR_KIT_REFUSED(sentence) __attribute__((unavailable(sentence)))
#define LYR_KIT_REFUSE(T, sentence)
#else
#define LYR_KIT_LIFETIMEBOUND
#define LYR_KIT_REFUSED(sentence)
#define LYR_KIT_REFUSE(T, sentence) static_assert(sizeof(T) == 0, sentence);
#endif

namespace lyr {
inline namespace v1 {

template <class T>
class Ref;

/// Takes over the count that goes with the pointer; null gives null.
template <class T>
[[nodiscard]] Ref<T> Take(T* pointer) noexcept;

/// Takes a count of its own, beside whoever owns the pointer; null gives null.
template <class T>
[[nodiscard]] Ref<T> Share(T* pointer);

namespace detail {

/// The IUnknown that speaks for an interface, or for a class of components.
template <class T>
IUnknown* ToUnknown(T* pointer) noexcept {
    if constexpr (std::is_base_of_v<LYRSysTSBaseUnknown, T>) {
        return static_cast<LYRSysTSBaseUnknown*>(pointer);
    } else {
        return pointer;
    }
}

/// What arrives through a `void**` is an IUnknown*; only as such may it be cast on.
template <class T>
T* FromVoid(void* pointer) noexcept {
    return static_cast<T*>(static_cast<IUnknown*>(pointer));
}

inline HRESULT Query(IUnknown* object, const GUID& iid, void** out) {
    *out = nullptr;
    return object != nullptr ? object->QueryInterface(iid, out) : E_UNEXPECTED;
}

/// Each component object answers it with itself: As<LYRSysTSBaseUnknown>()->IsA() is its class.
struct BaseUnknownDescription {
    using Interface = LYRSysTSBaseUnknown;
    using Inherited = NoDescription;
    static constexpr GUID id = LYR_ID("6dadd843-bcd7-4107-b9e9-72342d738784");
    static constexpr char name[] = "LYRSysTSBaseUnknown";
};
BaseUnknownDescription* LyrInterfaceOf(LYRSysTSBaseUnknown*, Asking);

/// Where an operation with a `void**` puts what it gives. Lives for that one call.
template <class T>
class Filling {
public:
    explicit Filling(Ref<T>& target) noexcept : _target(target) {}
    ~Filling() { _target = Take(FromVoid<T>(_out)); }
    Filling(const Filling&) = delete;
    Filling& operator=(const Filling&) = delete;

    operator void**() noexcept { return &_out; }

private:
    Ref<T>& _target;
    void* _out = nullptr;
};

}  // namespace detail

/// The interface `J` of an object, or null: also for a null pointer.
template <class J, class T>
[[nodiscard]] Ref<J> TryAs(T* pointer) {
    static_assert(detail::kHasOwnId<J>,
                  "lyr: this interface has no id of its own; write LYR_INTERFACE(Name, \"...\") in "
                  "it, with an id from uuidgen");
    void* out = nullptr;
    const HRESULT result = detail::Query(detail::ToUnknown(pointer), IdOf<J>(), &out);
    return Take(result == S_OK ? detail::FromVoid<J>(out) : nullptr);
}

/// The interface `J` of an object. Throws Failure when there is none, also for a null pointer.
template <class J, class T>
[[nodiscard]] Ref<J> As(T* pointer) {
    LYR_KIT_THROWS(J)
    static_assert(detail::kHasOwnId<J>,
                  "lyr: this interface has no id of its own; write LYR_INTERFACE(Name, \"...\") in "
                  "it, with an id from uuidgen");
    void* out = nullptr;
    IUnknown* const object = detail::ToUnknown(pointer);
    const HRESULT result = detail::Query(object, IdOf<J>(), &out);
    if (result != S_OK) detail::ThrowNoInterface(object, IdOf<J>(), NameOf<J>(), result);
    if (out == nullptr) detail::ThrowNoInterface(object, IdOf<J>(), NameOf<J>(), E_NOINTERFACE);
    return Take(detail::FromVoid<J>(out));
}

/// One counted reference to an interface, or to a component of this library; or null. As small as a
/// pointer. Several threads may use one object through a Ref each; a Ref itself is used by one
/// thread at a time.
template <class T>
class Ref {
public:
    Ref() noexcept = default;
    Ref(std::nullptr_t) noexcept {}
    Ref(const Ref& other) : Ref(Share(other._pointer)) {}
    Ref(Ref&& other) noexcept : _pointer(other.Detach()) {}
    ~Ref() {
        if (_pointer != nullptr) _pointer->Release();
    }

    /// To an interface that this one derives from, or that the component's class lists.
    template <class U, class = std::enable_if_t<std::is_convertible_v<U*, T*>>>
    Ref(const Ref<U>& other) : Ref(Share(static_cast<T*>(other.Get()))) {}
    template <class U, class = std::enable_if_t<std::is_convertible_v<U*, T*>>>
    Ref(Ref<U>&& other) noexcept : _pointer(other.Detach()) {}

    /// Refused: Take and Share make a Ref of a plain pointer.
    template <class U, class = std::enable_if_t<std::is_convertible_v<U*, T*>>>
    LYR_KIT_REFUSED(LYR_KIT_PLAIN_POINTER)
    Ref(U*){LYR_KIT_REFUSE(U, LYR_KIT_PLAIN_POINTER)}

    Ref&
    operator=(Ref other) noexcept {
        Swap(other);
        return *this;
    }

    /// Owned by the Ref, for as long as that one holds it.
    [[nodiscard]] T* Get() const noexcept LYR_KIT_LIFETIMEBOUND { return _pointer; }
    T* operator->() const noexcept LYR_KIT_LIFETIMEBOUND { return _pointer; }
    T& operator*() const noexcept LYR_KIT_LIFETIMEBOUND { return *_pointer; }
    explicit operator bool() const noexcept { return _pointer != nullptr; }

    /// The object's interface `J`; without one, As throws Failure and TryAs gives null. So do they
    /// when this is null.
    template <class J>
    [[nodiscard]] Ref<J> As() const {
        return v1::As<J>(_pointer);
    }
    template <class J>
    [[nodiscard]] Ref<J> TryAs() const {
        return v1::TryAs<J>(_pointer);
    }

    /// Gives the reference out: whoever takes the pointer owns its count. This is null then.
    [[nodiscard]] T* Detach() noexcept { return std::exchange(_pointer, nullptr); }

    /// For an operation that gives a counted `T` through a `void**`: `Get(IdOf<T>(), ref.Fill())`.
    [[nodiscard]] detail::Filling<T> Fill() noexcept { return detail::Filling<T>(*this); }

    void Swap(Ref& other) noexcept { std::swap(_pointer, other._pointer); }

private:
    friend Ref Take<T>(T* pointer) noexcept;

    struct Taking {};
    Ref(T* pointer, Taking) noexcept : _pointer(pointer) {}

    T* _pointer = nullptr;
};

template <class T>
Ref<T> Take(T* pointer) noexcept {
    return Ref<T>(pointer, typename Ref<T>::Taking{});
}

template <class T>
Ref<T> Share(T* pointer) {
    if (pointer != nullptr) pointer->AddRef();
    return Take(pointer);
}

/// Whether both hold the same address. One object may have several for one interface: SameObject
/// tells about objects.
template <class T, class U>
auto operator==(const Ref<T>& a, const Ref<U>& b) noexcept -> decltype(a.Get() == b.Get()) {
    return a.Get() == b.Get();
}
template <class T, class U>
auto operator!=(const Ref<T>& a, const Ref<U>& b) noexcept -> decltype(a.Get() != b.Get()) {
    return a.Get() != b.Get();
}
template <class T>
bool operator==(const Ref<T>& a, std::nullptr_t) noexcept {
    return !a;
}
template <class T>
bool operator!=(const Ref<T>& a, std::nullptr_t) noexcept {
    return static_cast<bool>(a);
}
template <class T>
bool operator==(std::nullptr_t, const Ref<T>& b) noexcept {
    return !b;
}
template <class T>
bool operator!=(std::nullptr_t, const Ref<T>& b) noexcept {
    return static_cast<bool>(b);
}

/// An order by address, for sets and maps: the same while the program runs.
template <class T>
bool operator<(const Ref<T>& a, const Ref<T>& b) noexcept {
    return reinterpret_cast<std::uintptr_t>(a.Get()) < reinterpret_cast<std::uintptr_t>(b.Get());
}

/// Whether two interfaces are of the same object; so are two that are null. An object that is being
/// deleted does not tell: of that one, only equal addresses are the same.
template <class T, class U>
[[nodiscard]] bool SameObject(const Ref<T>& a, const Ref<U>& b) {
    const Ref<IUnknown> first = a.template TryAs<IUnknown>();
    const Ref<IUnknown> second = b.template TryAs<IUnknown>();
    if (first || second) return first == second;
    return detail::ToUnknown(a.Get()) == detail::ToUnknown(b.Get());
}

}  // namespace v1
}  // namespace lyr

/// By address, as ==.
template <class T>
struct std::hash<lyr::Ref<T>> {
    std::size_t operator()(const lyr::Ref<T>& ref) const noexcept {
        return std::hash<T*>()(ref.Get());
    }
};
