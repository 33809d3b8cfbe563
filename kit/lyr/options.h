#pragma once

#include "LYRSysTSBaseUnknown.h"
#include "lyr/interface.h"

#include <cstddef>
#include <cstdint>
#include <type_traits>

/// @file
/// What may stand among the interfaces of a class, and the compiler's checks of such a list.

/// Gives a class its id, so that its objects can be made by it. A text as in LYR_INTERFACE, or a
/// constant that clients share.
#define LYR_CLASS_ID(id)                                                        \
    ::lyr::detail::ClassId<::lyr::detail::IdHigh(id), ::lyr::detail::IdLow(id), \
                           ::lyr::detail::IsId(id)>

namespace lyr {
inline namespace v1 {

namespace detail {
struct Option {};
struct ClassOption : Option {};
struct TieOption : Option {};
/// Ends each list, so that no list is empty for the preprocessor.
struct End : Option {};
}  // namespace detail

/// Among the interfaces of a class: what it says of the class.
/// Its C++ base class is the base component `Base`, whose interfaces it answers too.
template <class Base>
struct From : detail::ClassOption {};
/// Its objects have no lock: one thread at a time uses each of them.
struct OneThread : detail::ClassOption {};
/// Its objects are made by lyr::Make alone, in their own library, and not by name or class id.
struct Inner : detail::ClassOption {};
/// It inherits no interface: TIEs give them all.
struct TiesOnly : detail::ClassOption {};

namespace detail {

template <std::uint64_t high, std::uint64_t low, bool isId>
struct ClassId : ClassOption {
    static_assert(isId,
                  "lyr: this is no class id; an id looks like "
                  "\"9ff2405a-cfea-461a-a560-f36c489875ab\", and uuidgen makes new ones");
    [[gnu::visibility("hidden")]] static constexpr GUID id = IdOfHalves(high, low);
};

template <class T>
inline constexpr bool kIsOption = std::is_base_of_v<Option, T>;

/// Whether each option of a list is of that kind.
template <class Kind, class Arguments>
inline constexpr bool kHasOptionsOf = false;
template <class Kind, class... T>
inline constexpr bool kHasOptionsOf<Kind, List<T...>> =
    (true && ... && (!kIsOption<T> || std::is_base_of_v<Kind, T> || std::is_same_v<T, End>));

template <class... Lists>
struct Joined;
template <>
struct Joined<> {
    using Type = List<>;
};
template <class... A, class... Others>
struct Joined<List<A...>, Others...> {
    template <class Rest>
    struct With;
    template <class... B>
    struct With<List<B...>> {
        using Type = List<A..., B...>;
    };
    using Type = typename With<typename Joined<Others...>::Type>::Type;
};

/// What is no option: the interfaces.
template <class Arguments>
struct InterfacesOf;
template <class... T>
struct InterfacesOf<List<T...>> {
    using Type = typename Joined<std::conditional_t<kIsOption<T>, List<>, List<T>>...>::Type;
};

/// Each of the interfaces and what it derives from.
template <class Interfaces>
struct Answered;
template <class... I>
struct Answered<List<I...>> {
    using Type = typename Joined<typename Chain<I>::Type...>::Type;
};

template <class T, class List>
struct Count;
template <class T, class... U>
struct Count<T, List<U...>> {
    static constexpr int value = (0 + ... + (std::is_same_v<T, U> ? 1 : 0));
};

template <class T, class List>
inline constexpr bool kContains = Count<T, List>::value != 0;

template <class Arguments>
struct FindBase {
    using Type = void;
};
template <class T, class... Others>
struct FindBase<List<T, Others...>> : FindBase<List<Others...>> {};
template <class Base, class... Others>
struct FindBase<List<From<Base>, Others...>> {
    using Type = Base;
};

/// A class without an id has void in its place.
template <class Arguments>
struct FindClassId {
    using Type = void;
};
template <class T, class... Others>
struct FindClassId<List<T, Others...>> : FindClassId<List<Others...>> {};
template <std::uint64_t high, std::uint64_t low, bool isId, class... Others>
struct FindClassId<List<ClassId<high, low, isId>, Others...>> {
    using Type = ClassId<high, low, isId>;
};

template <class T>
inline constexpr bool kIsFrom = false;
template <class Base>
inline constexpr bool kIsFrom<From<Base>> = true;
template <class T>
inline constexpr bool kIsClassId = false;
template <std::uint64_t high, std::uint64_t low, bool isId>
inline constexpr bool kIsClassId<ClassId<high, low, isId>> = true;

/// How many of the options a list has.
template <class Arguments>
inline constexpr int kBases = 0;
template <class... T>
inline constexpr int kBases<List<T...>> = (0 + ... + (kIsFrom<T> ? 1 : 0));
template <class Arguments>
inline constexpr int kClassIds = 0;
template <class... T>
inline constexpr int kClassIds<List<T...>> = (0 + ... + (kIsClassId<T> ? 1 : 0));

/// Whether an option without a value of its own is there twice; of the others that is said in words
/// of their own.
template <class Arguments>
inline constexpr bool kRepeatsOption = false;
template <class... T>
inline constexpr bool kRepeatsOption<List<T...>> =
    (false || ... ||
     (kIsOption<T> && !kIsFrom<T> && !kIsClassId<T> && Count<T, List<T...>>::value > 1));

template <class I>
inline constexpr bool kIsInterface = std::is_base_of_v<IUnknown, I>&& std::is_abstract_v<I> &&
                                     !std::is_base_of_v<LYRSysTSBaseUnknown, I>;

/// Whether another one of the list derives from `I`.
template <class I, class... Others>
inline constexpr bool kIsBaseOfAny = (false || ... ||
                                      (std::is_base_of_v<I, Others> && !std::is_same_v<I, Others>));

/// The longest list of a class, far below what compilers can take in.
inline constexpr std::size_t kLongestList = 128;

/// Asked first, since a compiler that is out of its depth says nothing else.
template <class Arguments>
struct CheckedLength;
template <class... T>
struct CheckedLength<List<T...>> {
    static_assert(sizeof...(T) <= kLongestList + 1,  // with the End
                  "lyr: a class lists at most 128 interfaces and options; give the others by TIEs "
                  "(LYR_TIE) or extensions");
};

/// Nothing but sentences: the interfaces of one class go together.
template <class Interfaces>
struct CheckedInterfaces;
template <class... I>
struct CheckedInterfaces<List<I...>> {
    static_assert(
        (kIsInterface<I> && ...),
        "lyr: what is listed here is no interface; list abstract classes that derive from "
        "IUnknown, and a base component as lyr::From<Base>");
    static_assert(
        (kHasOneParent<I> && ...),
        "lyr: a listed interface derives from two others; an interface derives from IUnknown "
        "or from one other interface, and a class lists several");
    static_assert(
        (kHasOwnId<I> && ...),
        "lyr: a listed interface has no id of its own; write LYR_INTERFACE(Name, \"...\") "
        "in it, with an id from uuidgen");
    static_assert(((Count<I, List<I...>>::value == 1) && ...),
                  "lyr: an interface is listed twice; list it once");
    static_assert(!(kIsBaseOfAny<I, I...> || ...),
                  "lyr: an interface is listed beside one that derives from it; list the derived "
                  "one alone, which answers for both");
};

/// The same for what they derive from; asked when the above holds.
template <class Interfaces>
struct CheckedBases;
template <class... I>
struct CheckedBases<List<I...>> {
    static_assert(sizeof...(I) <= kLongestList,
                  "lyr: a class answers at most 128 interfaces, with those that they derive from; "
                  "give the others by TIEs (LYR_TIE) or extensions");
    static_assert(((Count<I, List<I...>>::value == 1) && ...),
                  "lyr: two of the listed interfaces derive from one base interface, which both "
                  "would answer; list one of them and give the other by a TIE (LYR_TIE) that names "
                  "the base in lyr::Without<...>");
    static constexpr bool value = true;
};

}  // namespace detail
}  // namespace v1
}  // namespace lyr
