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

/// Makes `factory` answer the interface for objects of the class that `meta` describes; when it
/// does so already, nothing. Ends the program when the class is not known, which null says, when
/// what is linked answers the interface already, or the class was asked for it before.
LYR_EXPORT void AnswerInTest(LYRSysTSMetaClass* meta, const char* className, const GUID& iid,
                             const char* interfaceName, LYRSysTSInterfaceFactory factory);

template <class I>
void Answer(LYRSysTSMetaClass* meta, const char* className, LYRSysTSInterfaceFactory factory) {
    AnswerInTest(meta, className, IdOf<I>(), NameOf<I>(), factory);
}

template <class Tie, class... I>
void AnswerByTies([[maybe_unused]] LYRSysTSMetaClass* meta, [[maybe_unused]] const char* className,
                  List<I...>) {
    (Answer<I>(
         meta, className,
         [](LYRSysTSBaseUnknown* object, unsigned char) { return AnswerByTie<Tie, I>(object); }),
     ...);
}

template <class C, class... I>
void AnswerByItself([[maybe_unused]] LYRSysTSMetaClass* meta,
                    [[maybe_unused]] const char* className, List<I...>) {
    (Answer<I>(
         meta, className,
         [](LYRSysTSBaseUnknown* object, unsigned char) { return AnswerItself<C, I>(object); }),
     ...);
}

/// Calls `answer` with the meta-object and the name of each class that objects of `C` answer for:
/// of the classes that an extension extends, those that are known, or else the first one and null.
template <class C, class Action>
void ForEachAnswered(Action answer) {
    if constexpr (IsExtension(KindOf<C>())) {
        static constexpr auto names = NamesOf<typename C::LyrTraits>();
        C::MetaObject();
        const char* const first = NextText(names.characters);
        bool isAnyKnown = false;
        for (const char* name = first; *name != '\0'; name = NextText(name)) {
            LYRSysTSMetaClass* const meta = LYRSysTSDictionary::QueryMetaObject(name);
            if (meta == nullptr) continue;
            answer(meta, name);
            isAnyKnown = true;
        }
        if (!isAnyKnown) answer(nullptr, first);
    } else {
        answer(C::MetaObject(), NameOfClass<C>());
    }
}

template <class T, class = void>
inline constexpr bool kIsTie = false;
template <class T>
inline constexpr bool kIsTie<T, std::void_t<typename T::LyrTieTraits>> = true;

/// The class and its base components.
template <class C>
void LinkAnswers() {
    ForEachAnswered<C>([](LYRSysTSMetaClass* meta, const char* name) {
        AnswerByItself<C>(meta, name, typename C::LyrTraits::Facts::Answers{});
    });
    using Base = typename C::LyrTraits::Facts::Base;
    if constexpr (kIsComponent<Base>) LinkAnswers<Base>();
}

template <class T>
void LinkComponent() {
    if constexpr (!kIsTie<T>) {
        using Facts = typename T::LyrTraits::Facts;
        if constexpr (!IsExtension(KindOf<T>())) LinkAnswers<T>();
        if constexpr (Facts::kIsCreatable) {
            void* (*const create)(void*) = [](void*) { return CreateByName<T>(); };
            const LYRSysTSFillDictionary registration(
                NameOfClass<T>(), "CreateInterface",
                reinterpret_cast<LYRSysTSInterfaceFactory>(reinterpret_cast<void (*)()>(create)));
        }
    }
}

template <class T>
void LinkOther() {
    if constexpr (kIsTie<T>) {
        using Traits = typename T::LyrTieTraits;
        ForEachAnswered<typename Traits::Object>([](LYRSysTSMetaClass* meta, const char* name) {
            AnswerByTies<T>(meta, name, TieAnswers<Traits>{});
        });
    } else if constexpr (IsExtension(KindOf<T>())) {
        LinkAnswers<T>();
    }
}

}  // namespace detail

namespace test {

/// Makes the classes, which are compiled into the program, answer requests and creations by name:
/// components, with what their base components answer, and TIEs and extensions of theirs or of
/// those linked before. Link<Circle, CircleTie, Layer>(); An extension answers for those of the
/// classes that it extends which are there by then, of which there is one at least.
template <class... T>
void Link() {
    (detail::LinkComponent<T>(), ...);
    (detail::LinkOther<T>(), ...);
}

/// Puts the LYR_FAKE class `Fake` in the place of whatever answers its interface for objects of the
/// class, and of classes derived from it. The class is one that can be made by name, or a linked
/// one that does not answer the interface itself. Once one of its objects was asked for the
/// interface, it is too late.
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
