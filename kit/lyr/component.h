#pragma once

#include "LYRSysTSBOAInternal.h"
#include "lyr/classobject.h"
#include "lyr/object.h"

/// @file
/// Components: classes whose objects are asked for interfaces and made by name.

/// Begins the class `Name`, whose body follows, in the one source that knows it:
///
///     LYR_COMPONENT(Greeter, IGreeter) {
///         void Greet(const char* name) override { std::printf("Hello, %s!\n", name); }
///     };
///
/// Behind the name stand the interfaces that the class inherits and implements, and options:
/// lyr::From<Base>, lyr::OneThread, lyr::Inner, lyr::TiesOnly, LYR_CLASS_ID("..."). Members are
/// public. `Component` names the base class that takes what the base component's constructor
/// takes. Clients make objects with lyr::Create("Name"), this library also with lyr::Make<Name>.
/// The name is unique in the process, whatever namespace the class is in.
#define LYR_COMPONENT(...) LYR_KIT_COMPONENT(__VA_ARGS__, ::lyr::detail::End)
#define LYR_KIT_COMPONENT(Class, ...) LYR_KIT_NAMED_COMPONENT(Class, Class, __VA_ARGS__)

/// The same under another name than that of the C++ class: LYR_NAMED_COMPONENT(Part, MotorPart,
/// ...).
#define LYR_NAMED_COMPONENT(...) LYR_KIT_NAMED_COMPONENT(__VA_ARGS__, ::lyr::detail::End)
#define LYR_KIT_NAMED_COMPONENT(Class, Name, ...)                                        \
    LYR_KIT_TRAITS(Class, Name, false, ::lyr::detail::Kind::kComponent, "", __VA_ARGS__) \
    LYR_KIT_OFFER(Class, Name, LyrTraitsOf##Class)                                       \
    struct Class : ::lyr::detail::ComponentFor<LyrTraitsOf##Class>

/// In two parts, for a base component: LYR_DECLARE_COMPONENT begins the class in a header, and
/// LYR_DEFINE_COMPONENT(Name); in one source of its library offers it. A class of the second kind,
/// also in another library, says lyr::From<Base> and lists what it adds.
#define LYR_DECLARE_COMPONENT(...) LYR_KIT_DECLARE_COMPONENT(__VA_ARGS__, ::lyr::detail::End)
#define LYR_KIT_DECLARE_COMPONENT(Class, ...)                                            \
    LYR_KIT_TRAITS(Class, Class, true, ::lyr::detail::Kind::kComponent, "", __VA_ARGS__) \
    struct LYR_EXPORT Class : ::lyr::detail::ComponentFor<LyrTraitsOf##Class>
#define LYR_DEFINE_COMPONENT(Class)                                                          \
    static_assert(                                                                           \
        ::lyr::detail::DeclaredTraits<Class>::value,                                         \
        "lyr: LYR_DEFINE_COMPONENT is for a class that LYR_DECLARE_COMPONENT begins; begin " \
        "the class with that, or take LYR_DEFINE_COMPONENT out");                            \
    LYR_KIT_OFFER(Class, Class, ::lyr::detail::DeclaredTraits<Class>::Type)                  \
    static_assert(true)

// The class is still incomplete where these stand. What needs all of it is in templates, which
// compilers instantiate at the end of the source.
#define LYR_KIT_TRAITS(Class, Name, isInTwoParts_, kind_, extended_, ...)                      \
    struct Class;                                                                              \
    static_assert(::lyr::detail::IsClass<Class>(),                                             \
                  "lyr: a component is no class template; write one for each of its types");   \
    static_assert(#__VA_ARGS__[0] != '(',                                                      \
                  "lyr: classes in parentheses are those that an extension extends; begin it " \
                  "with LYR_KEPT_EXTENSION or LYR_TRANSIENT_EXTENSION");                       \
    struct LyrTraitsOf##Class {                                                                \
        using Arguments = ::lyr::detail::List<__VA_ARGS__>;                                    \
        using Facts = ::lyr::detail::Facts<LyrTraitsOf##Class>;                                \
        using Described = Class;                                                               \
        using IsInTwoParts = std::bool_constant<isInTwoParts_>;                                \
        static constexpr char name[] = #Name;                                                  \
        static constexpr char extended[] = extended_;                                          \
        static constexpr ::lyr::detail::Kind kind = kind_;                                     \
    };                                                                                         \
    static_assert(::lyr::detail::CheckedClass<LyrTraitsOf##Class>::value);

#define LYR_KIT_OFFER(Class, Name, Traits)                                            \
    LYR_KIT_RECORDS(Class, Traits, Traits::Facts::Answers, true)                      \
    LYR_KIT_ENTRIES(Class, Name, Traits::Facts::Answers, ::lyr::detail::AnswerItself) \
    LYR_KIT_CREATION(Class, Name, Traits)

// NOLINTBEGIN(bugprone-macro-parentheses): what is given are names
// Each entry point is another name, made by the assembler, of a function that the compiler names.
// The name is made of the interface's anchor and the class. The function is hidden by an argument
// that is, since an attribute would not fit a class in a namespace without a name.
#define LYR_KIT_ENTRIES(Class, Name, Interfaces, Answer)                                    \
    template <class C, class I, class>                                                      \
    struct LyrEntryOf##Class {                                                              \
        [[gnu::used, gnu::noinline]] static IUnknown* Make(LYRSysTSBaseUnknown* object,     \
                                                           unsigned char) {                 \
            __asm__ volatile(".globl %c0" #Name "\n\t.type %c0" #Name ", " LYR_KIT_FUNCTION \
                             "\n\t.set %c0" #Name ", %c1"                                   \
                             :                                                              \
                             : LYR_KIT_ADDRESS(&::lyr::detail::OwnDescription<I>::anchor),  \
                               LYR_KIT_ADDRESS(&LyrEntryOf##Class::Make));                  \
            return Answer<C, I>(object);                                                    \
        }                                                                                   \
    };                                                                                      \
    template <class C, class List, class>                                                   \
    struct LyrEntriesOf##Class;                                                             \
    template <class C, class... I, class Hidden>                                            \
    struct LyrEntriesOf##Class<C, ::lyr::detail::List<I...>, Hidden> {                      \
        [[gnu::used]] static void Keep() {                                                  \
            (static_cast<void>(&LyrEntryOf##Class<C, I, Hidden>::Make), ...);               \
        }                                                                                   \
    };                                                                                      \
    template struct LyrEntriesOf##Class<Class, Interfaces, ::lyr::detail::Hidden>;

#define LYR_KIT_CREATION(Class, Name, Traits)                                                     \
    template <class C, bool isCreatable, class>                                                   \
    struct LyrCreationOf##Class {};                                                               \
    template <class C, class Hidden>                                                              \
    struct LyrCreationOf##Class<C, true, Hidden> {                                                \
        [[gnu::used, gnu::noinline]] static void* Make(void*) {                                   \
            __asm__ volatile(".globl fctLYRSysTSCreate" #Name "\n\t.type fctLYRSysTSCreate" #Name \
                             ", " LYR_KIT_FUNCTION "\n\t.set fctLYRSysTSCreate" #Name ", %c0"     \
                             :                                                                    \
                             : LYR_KIT_ADDRESS(&LyrCreationOf##Class::Make));                     \
            return ::lyr::detail::CreateByName<C>();                                              \
        }                                                                                         \
    };                                                                                            \
    template struct LyrCreationOf##Class<Class, Traits::Facts::kIsCreatable, ::lyr::detail::Hidden>;
// NOLINTEND(bugprone-macro-parentheses)

namespace lyr {
inline namespace v1 {
namespace detail {

template <class>
constexpr bool IsClass() {
    return true;
}
template <template <class...> class>
constexpr bool IsClass() {
    return false;
}

/// In the place of what is not known of a class: one that answers nothing and is not made.
struct NoTraits {
    using Arguments = List<Inner>;
    using Facts = detail::Facts<NoTraits>;
    static constexpr char name[] = "";
    static constexpr char extended[] = "";
    static constexpr Kind kind = Kind::kComponent;
};

/// What is known of a class that LYR_DECLARE_COMPONENT begins. Of any other that is said, and
/// nothing that would follow from it.
template <class C, class = void>
struct DeclaredTraits {
    static constexpr bool value = false;
    using Type = NoTraits;
};
template <class C>
struct DeclaredTraits<C, std::enable_if_t<C::LyrTraits::IsInTwoParts::value &&
                                          std::is_same_v<typename C::LyrTraits::Described, C>>> {
    static constexpr bool value = true;
    using Type = typename C::LyrTraits;
};

/// What the base components of a class inherit, and what that derives from.
template <class Base, bool = kIsComponent<Base>>
struct AnsweredByBases {
    using Type = List<>;
};
template <class Base>
struct AnsweredByBases<Base, true> {
    using BaseFacts = typename Base::LyrTraits::Facts;
    using Type = typename Joined<typename BaseFacts::Answers,
                                 typename AnsweredByBases<typename BaseFacts::Base>::Type>::Type;
};

template <class Interfaces, class Others>
inline constexpr bool kShareOne = false;
template <class... I, class Others>
inline constexpr bool kShareOne<List<I...>, Others> = (false || ... || kContains<I, Others>);

/// Sentences about the list of a class; and about what it needs when its kind is another.
template <class Traits>
struct CheckedClass : CheckedLength<typename Traits::Arguments>,
                      CheckedInterfaces<typename Facts<Traits>::Interfaces> {
    using Arguments = typename Traits::Arguments;
    using Base = typename Facts<Traits>::Base;

    static_assert(
        kHasOptionsOf<ClassOption, Arguments>,
        "lyr: lyr::Without is for a TIE; a class answers what its interfaces derive from");
    static_assert(std::is_same_v<typename Facts<Traits>::Interfaces, List<>> ||
                      !kContains<TiesOnly, Arguments>,
                  "lyr: lyr::TiesOnly is for a class that lists no interface; take it out, or give "
                  "the listed ones by TIEs (LYR_TIE)");
    static_assert(!IsExtension(Traits::kind) || !kContains<Inner, Arguments>,
                  "lyr: an extension is made by requests alone; take lyr::Inner out");
    static_assert(!kRepeatsOption<Arguments>, "lyr: an option is listed twice; list it once");
    static_assert(
        IsExtension(Traits::kind) || !Facts<Traits>::kHasClassId || !kContains<Inner, Arguments>,
        "lyr: a class id is for objects that others make, and lyr::Inner has them made in "
        "their own library alone; take one of the two out");
    static_assert(kBases<Arguments> <= 1,
                  "lyr: a class has one base component; take the other lyr::From out, and give its "
                  "interfaces by TIEs or list them");
    static_assert(kClassIds<Arguments> <= 1,
                  "lyr: a class has one id; take the other LYR_CLASS_ID out");
    static_assert(!Facts<Traits>::kHasBase || (kIsComponent<Base> && !IsExtension(KindOf<Base>()) &&
                                               !IsExtension(Traits::kind)),
                  "lyr: lyr::From names the base component of a component, a class that "
                  "LYR_DECLARE_COMPONENT begins; an extension has none");
    static_assert(!IsExtension(Traits::kind) || IsNameList(Traits::extended),
                  "lyr: an extension names the classes that it extends, in parentheses behind its "
                  "own name: LYR_KEPT_EXTENSION(Layer, (Circle, Square), ILayer)");
    static_assert(!NamesOneTwice(Traits::extended),
                  "lyr: an extension names one of its extended classes twice; name it once");
    static_assert(!IsNamed(Traits::name, Traits::extended),
                  "lyr: an extension extends itself; take its own name out of the parentheses, in "
                  "which the extended classes stand");
    static_assert(!std::is_same_v<typename Facts<Traits>::Interfaces, List<>> ||
                      kContains<TiesOnly, Arguments> || Facts<Traits>::kHasBase,
                  "lyr: the class lists no interface; list those that it implements behind its "
                  "name, or lyr::TiesOnly when TIEs give them all");
    static_assert(!IsExtension(Traits::kind) || !Facts<Traits>::kHasClassId,
                  "lyr: an extension has no class id; nobody makes it but the request");
    static_assert(!Facts<Traits>::kHasBase || !kContains<OneThread, Arguments>,
                  "lyr: the base component says whether its objects have a lock; take "
                  "lyr::OneThread out");
    static_assert(
        !kShareOne<typename Facts<Traits>::Answers, typename AnsweredByBases<Base>::Type>,
        "lyr: the base component answers one of these interfaces, or one that they derive "
        "from; take it out, or give it by a TIE (LYR_TIE) that names what the base "
        "answers in lyr::Without<...>");
    static constexpr bool value = CheckedBases<typename Facts<Traits>::Answers>::value;
};

/// What makes the instances of an extension; null for a component.
template <class C>
constexpr LYRSysTSBaseUnknown* (*CreateOf())() {
    if constexpr (IsExtension(KindOf<C>())) {
        static_assert(Making::kHasDefault<C>,
                      "lyr: an extension is made without arguments; give the class a constructor "
                      "that takes none, public or with friend lyr::Making");
        return []() -> LYRSysTSBaseUnknown* { return Making::Whole<C>::NewOrNull(); };
    } else {
        return nullptr;
    }
}

/// The entry point of an interface that the class itself inherits. The search asks it for objects
/// of the class and of those derived from it alone, so a component's is known.
template <class C, class I>
IUnknown* AnswerItself(LYRSysTSBaseUnknown* object) {
    static_cast<void>(&Making::CheckOverrides<C>);
    if constexpr (IsExtension(KindOf<C>())) {
        object = LYRSysTSBOAInternal::CreateBOA(object, C::MetaObject(), CreateOf<C>());
    }
    return static_cast<I*>(static_cast<C*>(object));
}

/// The entry point that makes an object: one with a count of 1, or null.
template <class C>
void* CreateByName() {
    static_cast<void>(&Making::CheckOverrides<C>);
    static_assert(Making::kHasDefault<C>,
                  "lyr: objects that are made by name are made without arguments; give the class a "
                  "constructor that takes none, public or with friend lyr::Making, or list "
                  "lyr::Inner and make them with lyr::Make");
    if constexpr (C::LyrTraits::Facts::kHasClassId) OfferClassObjects();
    LYRSysTSBaseUnknown* const object = Making::Whole<C>::NewOrNull();
    return static_cast<IUnknown*>(object);
}

}  // namespace detail
}  // namespace v1
}  // namespace lyr
