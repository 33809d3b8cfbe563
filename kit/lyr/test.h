#pragma once

#include "LYRSysTSDictionary.h"
#include "LYRSysTSFillDictionary.h"
#include "lyr/kit.h"

/// @file
/// For test programs: components that are linked into the program, and implementations that take
/// the place of others. No dictionary file is needed for either. What cannot be done any more ends
/// the program with a sentence.

/// Begins the class `Name`, an implementation of the interface `I` for objects of any class:
///
///     LYR_FAKE(FakePrinter, IPrint) {
///         void Print() override { ++printed; }
///         static inline int printed = 0;
///     };
///
/// Each request makes a new one. Object() is the object that was asked, a LYRSysTSBaseUnknown.
#define LYR_FAKE(...) LYR_KIT_FAKE(__VA_ARGS__, ::lyr::detail::End)
#define LYR_KIT_FAKE(Name, ...)                                          \
    struct Name;                                                         \
    struct LyrTraitsOf##Name {                                           \
        using Object = LYRSysTSBaseUnknown;                              \
        using Arguments = ::lyr::detail::List<__VA_ARGS__>;              \
    };                                                                   \
    static_assert(::lyr::detail::CheckedFake<LyrTraitsOf##Name>::value); \
    struct Name : ::lyr::detail::TieFor<LyrTraitsOf##Name>

namespace lyr {
inline namespace v1 {

namespace detail {

template <class Traits>
struct CheckedFake : CheckedInterfaces<TieInterfaces<Traits>> {
    static constexpr bool value = sizeof(typename Only<TieInterfaces<Traits>>::Type*) != 0;
};

/// Makes `factory` answer the interface for objects of the class that `meta` describes. Ends the
/// program when the class is not known, which null says, or was asked for the interface before.
LYR_EXPORT void AnswerInTest(LYRSysTSMetaClass* meta, const char* className, const GUID& iid,
                             const char* interfaceName, LYRSysTSInterfaceFactory factory);

template <class I>
void Answer(LYRSysTSMetaClass* meta, const char* className, LYRSysTSInterfaceFactory factory) {
    AnswerInTest(meta, className, IdOf<I>(), NameOf<I>(), factory);
}

template <class Tie, class... I>
void AnswerByTies(LYRSysTSMetaClass* meta, const char* className, List<I...>) {
    (Answer<I>(
         meta, className,
         [](LYRSysTSBaseUnknown* object, unsigned char) { return AnswerByTie<Tie, I>(object); }),
     ...);
}

template <class C, class... I>
void AnswerByItself(LYRSysTSMetaClass* meta, const char* className, List<I...>) {
    (Answer<I>(
         meta, className,
         [](LYRSysTSBaseUnknown* object, unsigned char) { return AnswerItself<C, I>(object); }),
     ...);
}

/// Calls `answer` with the meta-object and the name of each class that objects of `C` answer for.
template <class C, class Action>
void ForEachAnswered(Action answer) {
    if constexpr (IsExtension(KindOf<C>())) {
        static constexpr auto names = NamesOf<typename C::LyrTraits>();
        C::MetaObject();
        for (const char* name = NextText(names.characters); *name != '\0'; name = NextText(name)) {
            answer(LYRSysTSDictionary::QueryMetaObject(name), name);
        }
    } else {
        answer(C::MetaObject(), NameOfClass<C>());
    }
}

template <class T, class = void>
inline constexpr bool kIsTie = false;
template <class T>
inline constexpr bool kIsTie<T, std::void_t<typename T::LyrTieTraits>> = true;

template <class T>
void LinkOne() {
    if constexpr (kIsTie<T>) {
        using Traits = typename T::LyrTieTraits;
        ForEachAnswered<typename Traits::Object>([](LYRSysTSMetaClass* meta, const char* name) {
            AnswerByTies<T>(meta, name, TieAnswers<Traits>{});
        });
    } else {
        using Facts = typename T::LyrTraits::Facts;
        ForEachAnswered<T>([](LYRSysTSMetaClass* meta, const char* name) {
            AnswerByItself<T>(meta, name, typename Facts::Answers{});
        });
        if constexpr (Facts::kIsCreatable) {
            void* (*const create)(void*) = [](void*) { return CreateByName<T>(); };
            const LYRSysTSFillDictionary registration(
                NameOfClass<T>(), "CreateInterface",
                reinterpret_cast<LYRSysTSInterfaceFactory>(reinterpret_cast<void (*)()>(create)));
        }
    }
}

}  // namespace detail

namespace test {

/// Makes the classes, which are compiled into the program, answer requests and creations by name:
/// components first, then TIEs and extensions of theirs. Link<Circle, CircleTie, Layer>();
template <class... T>
void Link() {
    (detail::LinkOne<T>(), ...);
}

/// Puts the LYR_FAKE class `Fake` in the place of whatever answers its interface for objects of the
/// class, and of classes derived from it. The class is linked, or one that can be made by name.
/// Once one of its objects was asked for the interface, it is too late.
template <class Fake>
void Replace(const char* className) {
    using Traits = typename Fake::LyrTieTraits;
    LYRSysTSMetaClass* meta = LYRSysTSDictionary::QueryMetaObject(className);
    if (meta == nullptr) {
        const Ref<IUnknown> object = TryCreate<IUnknown>(className);
        meta = LYRSysTSDictionary::QueryMetaObject(className);
    }
    detail::AnswerByTies<Fake>(meta, className, detail::TieAnswers<Traits>{});
}

}  // namespace test
}  // namespace v1
}  // namespace lyr
