#pragma once

#include "LYRSysTSBaseUnknown.h"
#include "LYRSysTSFindOrCreateMetaObject.h"
#include "LYRSysTSKnownIds.h"
#include "LYRSysTSMetaClassExt.h"
#include "lyr/failure.h"
#include "lyr/options.h"
#include "lyr/records.h"
#include "lyr/ref.h"

#include <cstddef>
#include <new>
#include <type_traits>
#include <utility>

namespace lyr {
inline namespace v1 {

/// Who makes objects. A class whose constructors are private says `friend lyr::Making;`.
struct Making;

namespace detail {

/// The class is not handed to `new`, put on the stack or deleted: it is abstract until Making
/// derives from it. The names of this class and of its pure function are what compilers say then.
template <class Base>
class GivenBackByRelease : public Base {
public:
    GivenBackByRelease(const GivenBackByRelease&) = delete;
    GivenBackByRelease& operator=(const GivenBackByRelease&) = delete;

protected:
    using Base::Base;
    // Some bases take arguments, and not every base has a destructor that is virtual.
    // NOLINTBEGIN(modernize-use-equals-delete,modernize-use-override)
    GivenBackByRelease() = default;
    virtual ~GivenBackByRelease() = default;
    // NOLINTEND(modernize-use-equals-delete,modernize-use-override)

    static void* operator new(std::size_t size) { return ::operator new(size); }
    static void* operator new(std::size_t size, std::align_val_t alignment) {
        return ::operator new(size, alignment);
    }
    static void* operator new(std::size_t size, const std::nothrow_t& none) noexcept {
        return ::operator new(size, none);
    }
    static void* operator new(std::size_t size, std::align_val_t alignment,
                              const std::nothrow_t& none) noexcept {
        return ::operator new(size, alignment, none);
    }
    static void operator delete(void* object) { ::operator delete(object); }
    static void operator delete(void* object, std::align_val_t alignment) {
        ::operator delete(object, alignment);
    }

private:
    friend Making;
    virtual void ObjectsAreMadeByLyrMakeOrLyrCreate() = 0;
};

/// What the macros know of a class, worked out. `Traits` has its name, its kind, the text of the
/// classes that it extends, and the list of its interfaces and options.
template <class Traits>
struct Facts {
    using Arguments = typename Traits::Arguments;
    using Interfaces = typename InterfacesOf<Arguments>::Type;
    using Answers = typename Answered<Interfaces>::Type;
    using Base = typename FindBase<Arguments>::Type;

    static constexpr bool kHasBase = !std::is_void_v<Base>;
    static constexpr bool kIsThreadSafe = !kContains<OneThread, Arguments>;
    static constexpr bool kIsCreatable =
        Traits::kind == Kind::kComponent && !kContains<Inner, Arguments>;
    static constexpr bool kHasClassId = !std::is_void_v<typename FindClassId<Arguments>::Type>;

    /// Null when the class has none.
    static constexpr const GUID* ClassId() {
        if constexpr (kHasClassId) {
            return &FindClassId<Arguments>::Type::id;
        } else {
            return nullptr;
        }
    }

    static constexpr LYRSysTSTypeOfClass Type() {
        if (Traits::kind == Kind::kKeptExtension) return KeptExtension;
        if (Traits::kind == Kind::kTransientExtension) return TransientExtension;
        return ImplementationClass;
    }
    static constexpr const char* BaseName() {
        if constexpr (kHasBase) {
            return Base::LyrTraits::name;
        } else {
            return "-";
        }
    }
};

/// The next of several texts that stand one behind the other.
inline const char* NextText(const char* text) {
    while (*text++ != '\0') {
    }
    return text;
}

/// The one meta-object of a class. `names` are those of NamesOf. All extended classes are named
/// before anybody can ask.
inline LYRSysTSMetaClass* DescribeClass(const char* names, LYRSysTSTypeOfClass type,
                                        const GUID* clsid, LYRSysTSMetaClass* base) {
    const char* extended = NextText(names);
    const char* const first = *extended != '\0' ? extended : nullptr;
    LYRSysTSMetaClass* const made = LYRSysTSFindOrCreateMetaObject(names, type, clsid, base, first);
    for (; *extended != '\0'; extended = NextText(extended)) {
        LYRSysTSMetaClassExt::AddExtendedComponent(made, extended);
    }
    return made;
}

// Hidden, so that two libraries with classes of one name share nothing.
template <class Traits, class Root>
[[gnu::visibility("hidden")]] LYRSysTSMetaClass* MetaObjectOf() {
    static constexpr auto names = NamesOf<Traits>();
    static LYRSysTSMetaClass* const meta = DescribeClass(
        names.characters, Facts<Traits>::Type(), Facts<Traits>::ClassId(), Root::MetaObject());
    return meta;
}

/// The base of a class without a base component.
template <bool isThreadSafe, bool isTransient>
class ComponentRoot : public GivenBackByRelease<LYRSysTSBaseUnknown> {
public:
    /// While it is being deleted it answers nothing: what was made for it then would stay behind.
    HRESULT QueryInterface(const GUID& iid, void** out) override {
        if (!_isDying) return LYRSysTSBaseUnknown::QueryInterface(iid, out);
        if (out == nullptr) return E_FAIL;
        *out = nullptr;
        return E_UNEXPECTED;
    }
    std::uint32_t AddRef() override {
        const std::uint32_t count = LYRSysTSBaseUnknown::AddRef();
        return count != 1 ? count : KeepFromDyingTwice();
    }

protected:
    ComponentRoot() : GivenBackByRelease(static_cast<unsigned char>(isThreadSafe ? 1 : 0)) {}

private:
    /// A count that is 1 was 0 before: the object is being deleted. It keeps this count for good,
    /// so that a reference which is made and dropped meanwhile does not delete it again.
    [[gnu::noinline, gnu::cold]] std::uint32_t KeepFromDyingTwice() {
        _isDying = true;
        const std::uint32_t count = LYRSysTSBaseUnknown::AddRef();
        // A transient extension has taken one more count of the object that it extends, too.
        void* extended = nullptr;
        if (isTransient && LYRSysTSBaseUnknown::QueryInterface(IID_IUnknown, &extended) == S_OK) {
            static_cast<IUnknown*>(extended)->Release();
            static_cast<IUnknown*>(extended)->Release();
        }
        return count;
    }

    bool _isDying = false;
};

template <class Traits, class Base>
struct RootOf {
    using Type = Base;
};
template <class Traits>
struct RootOf<Traits, void> {
    using Type =
        ComponentRoot<Facts<Traits>::kIsThreadSafe, Traits::kind == Kind::kTransientExtension>;
};

/// One QueryInterface, AddRef and Release for all interfaces of a class; without any, those of the
/// root are taken straight.
template <class Root, class Interfaces>
class Answering;
template <class Root>
class Answering<Root, List<>> : public Root {
protected:
    using Root::Root;
    Answering() = default;
};
template <class Root, class First, class... Others>
class Answering<Root, List<First, Others...>> : public Root, public First, public Others... {
public:
    HRESULT QueryInterface(const GUID& iid, void** out) override {
        return Root::QueryInterface(iid, out);
    }
    std::uint32_t AddRef() override { return Root::AddRef(); }
    std::uint32_t Release() override { return Root::Release(); }

protected:
    using Root::Root;
    Answering() = default;
};

/// The base of a class of components or extensions.
template <class Traits, class Root>
class ComponentOf : public Answering<Root, typename Facts<Traits>::Interfaces> {
public:
    using LyrTraits = Traits;

    static LYRSysTSMetaClass* MetaObject() { return MetaObjectOf<Traits, Root>(); }
    LYRSysTSMetaClass* GetMetaObject() const override { return MetaObject(); }

protected:
    using Component = ComponentOf;

    using ComponentOf::Answering::Answering;
    ComponentOf() = default;
};

template <class Traits>
using ComponentFor =
    ComponentOf<Traits, typename RootOf<Traits, typename Facts<Traits>::Base>::Type>;

/// Whether the class is begun by one of the kit's macros; and what it is called then.
template <class C, class = void>
inline constexpr bool kIsComponent = false;
template <class C>
inline constexpr bool kIsComponent<C, std::void_t<typename C::LyrTraits>> = true;

template <class C>
constexpr Kind KindOf() {
    if constexpr (kIsComponent<C>) {
        return C::LyrTraits::kind;
    } else {
        return Kind::kComponent;
    }
}

template <class C>
constexpr const char* NameOfClass() {
    if constexpr (kIsComponent<C>) {
        return C::LyrTraits::name;
    } else {
        return "";
    }
}

}  // namespace detail

struct Making {
    /// The class whose objects there really are.
    template <class C>
    class Whole : public C {
    public:
        Whole() = default;

        template <class... A>
        static C* New(A&&... arguments) {
            if constexpr (sizeof...(A) == 0) {
                return new Whole;
            } else {
                return new Whole(Forwarding{}, std::forward<A>(arguments)...);
            }
        }
        /// The same with the default constructor: null when that, or the lack of memory, throws.
        static C* NewOrNull() {
            if constexpr (std::is_abstract_v<Whole> || !std::is_default_constructible_v<Whole>) {
                return nullptr;  // refused where this is called
            } else if constexpr (std::is_nothrow_default_constructible_v<Whole>) {
                return new (std::nothrow) Whole;
            } else {
                return static_cast<C*>(detail::MakeOrNull([]() -> void* { return New(); }));
            }
        }

    private:
        struct Forwarding {};
        template <class... A>
        explicit Whole(Forwarding, A&&... arguments) : C(std::forward<A>(arguments)...) {}
        void ObjectsAreMadeByLyrMakeOrLyrCreate() override {}
    };

    /// Says, once for each class whose objects are made, that operations are missing, and has the
    /// compiler name them. Mentioned and never called.
    template <class C>
    static void CheckOverrides() {
        static_assert(!std::is_abstract_v<Whole<C>>,
                      "lyr: the class does not implement every operation of its interfaces; "
                      "override what the next lines name");
        if constexpr (std::is_abstract_v<Whole<C>>) Whole<C> object;
    }
    /// Also true of a class that lacks operations, of which that is said.
    template <class C>
    static constexpr bool kHasDefault =
        std::is_abstract_v<Whole<C>> || std::is_default_constructible_v<Whole<C>>;
};

/// A new object of a component class of this library, with the one count that the Ref holds. Throws
/// what the constructor throws. The Ref converts to a Ref of each interface that the class lists.
template <class C, class... A>
[[nodiscard]] Ref<C> Make(A&&... arguments) {
    static_assert(!detail::IsExtension(detail::KindOf<C>()),
                  "lyr: an extension is made by the request for one of its interfaces; ask the "
                  "extended object with As or TryAs");
    static_cast<void>(&Making::CheckOverrides<C>);
    return Take(Making::Whole<C>::New(std::forward<A>(arguments)...));
}

}  // namespace v1
}  // namespace lyr
