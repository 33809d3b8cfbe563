#pragma once

#include "lyr/component.h"

/// @file
/// Extensions: classes that answer interfaces for the objects of other classes, which know nothing
/// of it.

/// Begins the class `Name`, of which each object of the extended classes has one instance, made at
/// the first request for one of its interfaces and deleted with the object:
///
///     LYR_KEPT_EXTENSION(Layer, (Circle, Square), ILayer) {
///         void SetLayer(int layer) override { _layer = layer; }
///     private:
///         std::atomic<int> _layer{0};
///     };
///
/// In parentheses stand the names of the extended classes, of any library; interfaces and options
/// as in LYR_COMPONENT. Inside, lyr::As<IShape>(this) asks the extended object, but not in the
/// constructor, when it is not known yet. Such a Ref is not kept: the object would never die.
#define LYR_KEPT_EXTENSION(...) \
    LYR_KIT_EXTENSION(::lyr::detail::Kind::kKeptExtension, __VA_ARGS__, ::lyr::detail::End)

/// The same with a new instance for each request, which dies with the requester's last reference.
#define LYR_TRANSIENT_EXTENSION(...) \
    LYR_KIT_EXTENSION(::lyr::detail::Kind::kTransientExtension, __VA_ARGS__, ::lyr::detail::End)

// The search expects an extension's meta-object as soon as its library is loaded.
#define LYR_KIT_EXTENSION(kind, Class, ...)                                         \
    LYR_KIT_TRAITS(Class, Class, false, kind, LYR_KIT_EXTENDED(__VA_ARGS__, ),      \
                   LYR_KIT_BEHIND_EXTENDED(__VA_ARGS__))                            \
    LYR_KIT_OFFER(Class, Class, LyrTraitsOf##Class)                                 \
    [[gnu::used]] static const LYRSysTSMetaClass* const LyrDescribedAtLoad##Class = \
        ::lyr::detail::ComponentFor<LyrTraitsOf##Class>::MetaObject();              \
    struct Class : ::lyr::detail::ComponentFor<LyrTraitsOf##Class>
#define LYR_KIT_EXTENDED(extended, ...) #extended
#define LYR_KIT_BEHIND_EXTENDED(extended, ...) __VA_ARGS__
