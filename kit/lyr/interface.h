#pragma once

#include "IUnknown.h"
#include "lyr/id.h"

#include <type_traits>

/// @file
/// Interfaces that know their ids, their names and the interfaces that they derive from.

/// Stands first in the interface `Name` and gives it its id, fresh from uuidgen:
///
///     struct IGreeter : IUnknown {
///         LYR_INTERFACE(IGreeter, "9ff2405a-cfea-461a-a560-f36c489875ab");
///         virtual void Greet(const char* name) = 0;
///     };
///
/// What follows is public. An interface derives from IUnknown or from one other interface; classes
/// that answer it then answer that one too. Its name is unique in the process, whatever namespace
/// it is in. Nobody deletes through an interface.
#define LYR_INTERFACE(Name, text)                                                     \
public:                                                                               \
    auto LyrStandsIn()->typename ::lyr::detail::StandsIn<Name, decltype(this)>::Void; \
    using LyrInherited = typename ::lyr::detail::InheritedDescription<Name>::Type;    \
    struct LyrDescription {                                                           \
        using Interface = Name;                                                       \
        using Inherited = LyrInherited;                                               \
        LYR_KIT_DESCRIPTION(Name, LYR_ID(text))                                       \
    };                                                                                \
                                                                                      \
protected:                                                                            \
    ~Name() = default;                                                                \
                                                                                      \
public:                                                                               \
    static_assert(true)

// NOLINTBEGIN(bugprone-macro-parentheses): what is given are names

/// Lets an interface that has a constant id join without being changed. Stands in the interface's
/// own namespace, behind it and behind those for the interfaces that it derives from:
///
///     LYR_EXISTING_INTERFACE(IShape, IID_IShape);
#define LYR_EXISTING_INTERFACE(Name, id)                                  \
    struct LyrDescriptionOf##Name {                                       \
        using Interface = Name;                                           \
        using Inherited = ::lyr::detail::Pointed<decltype(LyrInterfaceOf( \
            static_cast<Name*>(nullptr), ::lyr::detail::Asking{}))>;      \
        LYR_KIT_DESCRIPTION(Name, id)                                     \
    };                                                                    \
    [[maybe_unused]] LyrDescriptionOf##Name* LyrInterfaceOf(Name*, ::lyr::detail::Asking)

// The anchor has no use but its name in the assembler, of which the names of entry points are made:
// those of base interfaces, which no macro sees, too. Hidden, so that the libraries of a process
// share none of it; g++ warns where everything is hidden already, in a namespace without a name. It
// is not defined, since an entry point may have that very name: ILayer of a View, where there is an
// ILayerView. Only clang wants a definition; there, such an entry point is hidden, which the check
// of the library tells.
#if defined(__clang__)
#define LYR_KIT_ANCHOR(symbol) static inline const char anchor __asm__(symbol) = 0
#else
#define LYR_KIT_ANCHOR(symbol) static const char anchor __asm__(symbol)
#endif
#define LYR_KIT_DESCRIPTION(Name, guid)                                                 \
    _Pragma("GCC diagnostic push") _Pragma("GCC diagnostic ignored \"-Wattributes\"")   \
        [[maybe_unused, gnu::visibility("hidden")]] static constexpr ::GUID id = guid;  \
    [[maybe_unused, gnu::visibility("hidden")]] static constexpr char name[] = #Name;   \
    [[maybe_unused, gnu::visibility("hidden")]] LYR_KIT_ANCHOR("LYRSysTSCreate" #Name); \
    _Pragma("GCC diagnostic pop")
// NOLINTEND(bugprone-macro-parentheses)

namespace lyr {
inline namespace v1 {
namespace detail {

template <class... T>
struct List {};

/// Hides what a template makes of it.
struct [[gnu::visibility("hidden")]] Hidden{};

template <class Pointer>
using Pointed = std::remove_pointer_t<Pointer>;

template <class Name, class This>
struct StandsIn {
    static_assert(std::is_same_v<Name*, This>,
                  "lyr: LYR_INTERFACE names another class than the one that it stands in");
    using Void = void;
};

/// Has the look-up of LyrInterfaceOf consider this namespace too.
struct Asking {};

/// What stands for an interface without an id.
struct NoDescription {
    using Interface = void;
    using Inherited = NoDescription;
    static constexpr GUID id{};
    static constexpr char name[] = "";
};

struct UnknownDescription {
    using Interface = IUnknown;
    using Inherited = NoDescription;
    static constexpr GUID id{0, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
    static constexpr char name[] = "IUnknown";
};
UnknownDescription* LyrInterfaceOf(IUnknown*, Asking);

/// Asked inside of an interface, before that one's own description: its base's.
template <class I, class = void>
struct InheritedDescription {
    using Type = NoDescription;
};
template <class I>
struct InheritedDescription<I, std::void_t<typename I::LyrDescription>> {
    using Type = typename I::LyrDescription;
};

/// Asked of a complete interface: its own description, or else that of the nearest base which has
/// one; once of those inside of interfaces, once of those beside them.
template <class I, class = void>
struct InnerDescription {
    using Type = NoDescription;
};
template <class I>
struct InnerDescription<I, std::void_t<typename I::LyrDescription>> {
    using Type = typename I::LyrDescription;
};
template <class I, class = void>
struct OuterDescription {
    using Type = NoDescription;
};
template <class I>
struct OuterDescription<I,
                        std::void_t<decltype(LyrInterfaceOf(static_cast<I*>(nullptr), Asking{}))>> {
    using Type = Pointed<decltype(LyrInterfaceOf(static_cast<I*>(nullptr), Asking{}))>;
};

template <class Description, class I>
constexpr bool kIsOf = std::is_same_v<typename Description::Interface, I>;

template <class I, class Inner = typename InnerDescription<I>::Type,
          class Outer = typename OuterDescription<I>::Type>
using OwnDescription =
    std::conditional_t<kIsOf<Inner, I>, Inner,
                       std::conditional_t<kIsOf<Outer, I>, Outer, NoDescription>>;

/// The one of the two that is of the more derived interface.
template <class A, class B>
using MoreDerived = std::conditional_t<
    std::is_void_v<typename A::Interface>, B,
    std::conditional_t<std::is_base_of_v<typename A::Interface, typename B::Interface>, B, A>>;

template <class Description, class I>
using UnlessOf = std::conditional_t<kIsOf<Description, I>, NoDescription, Description>;

/// The description of the nearest interface that `I`, which has one of its own, derives from.
template <class I>
using BaseDescription = MoreDerived<MoreDerived<typename OwnDescription<I>::Inherited,
                                                UnlessOf<typename InnerDescription<I>::Type, I>>,
                                    UnlessOf<typename OuterDescription<I>::Type, I>>;

template <class I>
constexpr bool kHasOwnId = !std::is_void_v<typename OwnDescription<I>::Interface>;

/// Whether there is one IUnknown in it, at most.
template <class I>
constexpr bool kHasOneParent =
    !std::is_base_of_v<IUnknown, I> || std::is_convertible_v<I*, IUnknown*>;

template <class I, class List>
struct Prepend;
template <class I, class... Others>
struct Prepend<I, List<Others...>> {
    using Type = List<I, Others...>;
};

/// The interface and those that it derives from, without IUnknown.
template <class I>
struct Chain {
    using Type =
        typename Prepend<I, typename Chain<typename BaseDescription<I>::Interface>::Type>::Type;
};
template <>
struct Chain<IUnknown> {
    using Type = List<>;
};
template <>
struct Chain<void> {
    using Type = List<>;
};

}  // namespace detail

/// The id of an interface, by its type.
template <class I>
constexpr const GUID& IdOf() {
    static_assert(detail::kHasOwnId<I>,
                  "lyr: this interface has no id of its own; write LYR_INTERFACE(Name, \"...\") in "
                  "it, with an id from uuidgen");
    static_assert(detail::kHasOneParent<I>,
                  "lyr: this interface derives from two others; an interface derives from IUnknown "
                  "or from one other interface, and a class lists several");
    return detail::OwnDescription<I>::id;
}

/// The name of an interface, by its type.
template <class I>
constexpr const char* NameOf() {
    return detail::OwnDescription<I>::name;
}

}  // namespace v1
}  // namespace lyr
