#pragma once

#include "LYRSysTSTIEInternal.h"
#include "lyr/component.h"

/// @file
/// TIEs: small objects that are an interface, for a class that does not inherit it.

/// Begins the class `Name`, which gives the objects of a class their interface `I`, behind the
/// class and in its library:
///
///     LYR_TIE(GreeterTie, Greeter, IGreeter) {
///         void Greet(const char* name) override { Object().SayHello(name); }
///     };
///
/// Object() is the Greeter. Each request makes a new TIE, which dies with the requester's last
/// reference. Behind the interface, lyr::Without<IBase> names a base interface that the class, or
/// another TIE of it, answers already. The class may be a component or an extension.
#define LYR_TIE(...) LYR_KIT_TIE(__VA_ARGS__, ::lyr::detail::End)
#define LYR_KIT_TIE(Name, Class, ...) LYR_KIT_NAMED_TIE(Name, Class, Class, __VA_ARGS__)

/// The same for a class with another name than that of its C++ class:
/// LYR_NAMED_TIE(PartTie, Part, MotorPart, IPart).
#define LYR_NAMED_TIE(...) LYR_KIT_NAMED_TIE(__VA_ARGS__, ::lyr::detail::End)
#define LYR_KIT_NAMED_TIE(Tie, Class, Name, ...)                                               \
    struct Tie;                                                                                \
    struct LyrTraitsOf##Tie {                                                                  \
        using Object = Class;                                                                  \
        using Arguments = ::lyr::detail::List<__VA_ARGS__>;                                    \
        static constexpr char objectName[] = #Name;                                            \
    };                                                                                         \
    static_assert(::lyr::detail::CheckedTie<LyrTraitsOf##Tie>::value);                         \
    LYR_KIT_RECORDS(Tie, Class::LyrTraits, ::lyr::detail::TieAnswers<LyrTraitsOf##Tie>, false) \
    LYR_KIT_ENTRIES(Tie, Name, ::lyr::detail::TieAnswers<LyrTraitsOf##Tie>,                    \
                    ::lyr::detail::AnswerByTie)                                                \
    struct Tie : ::lyr::detail::TieFor<LyrTraitsOf##Tie>

namespace lyr {
inline namespace v1 {

/// Among the interfaces of a TIE: it does not answer `Base`, from which its interface derives.
template <class Base>
struct Without : detail::TieOption {};

namespace detail {

template <class Traits>
using TieInterfaces = typename InterfacesOf<typename Traits::Arguments>::Type;

template <class Interfaces, class Arguments>
struct Kept;
template <class... I, class Arguments>
struct Kept<List<I...>, Arguments> {
    using Type = typename Joined<
        std::conditional_t<kContains<Without<I>, Arguments>, List<>, List<I>>...>::Type;
};

/// What a TIE answers: its interface and those that it derives from, but for those left out.
template <class Traits>
using TieAnswers =
    typename Kept<typename Answered<TieInterfaces<Traits>>::Type, typename Traits::Arguments>::Type;

template <class Interfaces>
struct Only {
    static_assert(!std::is_same_v<Interfaces, Interfaces>,
                  "lyr: a TIE gives one interface; write one for each: LYR_TIE(GreeterTie, "
                  "Greeter, IGreeter)");
};
template <class I>
struct Only<List<I>> {
    using Type = I;
};

constexpr bool IsSameText(const char* a, const char* b) {
    while (*a != '\0' && *a == *b) {
        ++a;
        ++b;
    }
    return *a == *b;
}

/// Whether the list of a TIE for `I` leaves out nothing but what that derives from.
template <class I, class T>
inline constexpr bool kFitsTieFor = true;
template <class I, class Base>
inline constexpr bool kFitsTieFor<I, Without<Base>> =
    std::is_base_of_v<Base, I> && !std::is_same_v<Base, I>;
template <class I, class Arguments>
inline constexpr bool kFit = false;
template <class I, class... T>
inline constexpr bool kFit<I, List<T...>> = (kFitsTieFor<I, T> && ...);

template <class Traits>
struct CheckedTie : CheckedInterfaces<TieInterfaces<Traits>> {
    static_assert(kIsComponent<typename Traits::Object>,
                  "lyr: a TIE is for a class that LYR_COMPONENT or one of its kind begins; behind "
                  "the TIE's own name stands that class, and then the interface");
    static_assert(IsSameText(NameOfClass<typename Traits::Object>(), Traits::objectName),
                  "lyr: the class has another name than that of its C++ class; write "
                  "LYR_NAMED_TIE(Tie, Class, Name, Interface)");
    static_assert(kHasOptionsOf<TieOption, typename Traits::Arguments>,
                  "lyr: this option is for the class behind the TIE; a TIE has lyr::Without alone");
    static_assert(!kRepeatsOption<typename Traits::Arguments>,
                  "lyr: lyr::Without names an interface twice; name it once");
    static_assert(kFit<typename Only<TieInterfaces<Traits>>::Type, typename Traits::Arguments>,
                  "lyr: lyr::Without names an interface that the TIE's interface derives from");
    static constexpr bool value = true;
};

/// The base of a TIE for an object of the class `C`.
template <class Traits, class I, class C>
class TieOf : public GivenBackByRelease<I> {
public:
    using LyrTieTraits = Traits;

    TieOf(const TieOf&) = delete;
    TieOf& operator=(const TieOf&) = delete;

    HRESULT QueryInterface(const GUID& iid, void** out) override {
        return LYRSysTSTIEInternal::Tie_Query(_object, iid, out);
    }
    std::uint32_t AddRef() override {
        return static_cast<std::uint32_t>(LYRSysTSTIEInternal::Tie_AddRef(_count, _object));
    }
    std::uint32_t Release() override {
        unsigned char mustDelete = 0;
        const int count = LYRSysTSTIEInternal::Tie_Release(_count, _object, mustDelete);
        if (mustDelete != 0) delete this;
        return static_cast<std::uint32_t>(count);
    }

    /// Finds or makes the implementation for `object`, and this is its TIE from now on; or, when
    /// there is none, deletes itself and gives null.
    IUnknown* LyrTieTo(LYRSysTSBaseUnknown* object, LYRSysTSBaseUnknown* (*create)()) {
        const HRESULT result =
            LYRSysTSTIEInternal::Tie_Construct(object, C::MetaObject(), create, _object);
        if (result == S_OK) return this;
        delete this;
        return nullptr;
    }

protected:
    TieOf() = default;

    /// The object behind the interface. Not in the constructor and the destructor.
    C& Object() const { return *static_cast<C*>(_object); }

private:
    LYRSysTSBaseUnknown* _object = nullptr;
    int _count = 1;  // matches the one count that QueryInterface raises on the object
};

template <class Traits>
using TieFor = TieOf<Traits, typename Only<TieInterfaces<Traits>>::Type, typename Traits::Object>;

/// The entry point of an interface that the class `Tie` gives. The TIE is made first: when memory
/// runs out, no new extension is left behind.
template <class Tie, class I>
IUnknown* AnswerByTie(LYRSysTSBaseUnknown* object) {
    static_cast<void>(&Making::CheckOverrides<Tie>);
    static_assert(Making::kHasDefault<Tie>,
                  "lyr: a TIE is made without arguments; give it a constructor that takes none, "
                  "public or with friend lyr::Making");
    Tie* const tie = Making::Whole<Tie>::NewOrNull();
    if (tie == nullptr) return nullptr;
    return tie->LyrTieTo(object, CreateOf<typename Tie::LyrTieTraits::Object>());
}

}  // namespace detail
}  // namespace v1
}  // namespace lyr
