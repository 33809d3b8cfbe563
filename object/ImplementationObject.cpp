#include "object/ImplementationObject.h"

#include "object/ObjectAccess.h"
#include "support/Listener.h"

#include <memory>
#include <new>

namespace lyr::internal {

namespace {

/// Tells the listener why there is no implementation; the result of whoever asked for one.
[[gnu::cold]] LYRSysTSBaseUnknown* None(Cause cause, const LYRSysTSBaseUnknown& object,
                                        const LYRSysTSMetaClass& implementation) {
    if (Listener* const listener = CurrentListener()) {
        listener->OnNoImplementation(cause, object.IsA(), implementation.IsA());
    }
    return nullptr;
}

/// Where the walk along an object's kept extensions ended: the one of the class, or the last link.
struct KeptSearch {
    LYRSysTSBaseUnknown* found;
    LYRSysTSChainExtension* last;
};

KeptSearch FindKept(const LYRSysTSBaseUnknown& object, const LYRSysTSMetaClass* metaClass) {
    KeptSearch search{nullptr, nullptr};
    for (auto* link = ObjectAccess::Chain(object); link != nullptr;
         link = link->GetNextChainExtension()) {
        LYRSysTSBaseUnknown* extension = nullptr;
        search.last = link;
        if (link->GetAssociatedExtension(extension) != S_OK) continue;
        if (extension->GetMetaObject() != metaClass) continue;
        search.found = extension;
        break;
    }
    return search;
}

/// A new instance of an extension of the kind; null when the function makes none, or one that is of
/// another kind, mostly since its author has forgotten to say which: it would count, and die, for
/// itself. That one is given back, with what it may have kept by then.
std::unique_ptr<LYRSysTSBaseUnknown> Make(LYRSysTSTypeOfClass type,
                                          LYRSysTSBaseUnknown* (*create)()) {
    std::unique_ptr<LYRSysTSBaseUnknown> instance(create != nullptr ? create() : nullptr);
    if (instance == nullptr) return nullptr;
    LYRSysTSMetaClassExt* const extension = ToExtension(instance->GetMetaObject());
    if (extension != nullptr && extension->GetExtensionType() == type) return instance;
    instance.release()->Release();
    return nullptr;
}

LYRSysTSBaseUnknown* MakeTransient(LYRSysTSBaseUnknown& object, const LYRSysTSMetaClass* metaClass,
                                   LYRSysTSBaseUnknown* (*create)()) {
    std::unique_ptr<LYRSysTSBaseUnknown> instance = Make(TransientExtension, create);
    if (instance == nullptr) return None(Cause::kWrongKind, object, *metaClass);
    ObjectAccess::SetExtended(*instance, &object);
    return instance.release();
}

LYRSysTSBaseUnknown* FindOrMakeKept(LYRSysTSBaseUnknown& object, const LYRSysTSMetaClass* metaClass,
                                    LYRSysTSBaseUnknown* (*create)()) {
    // The link of an extension is no chain.
    if (ToExtension(object.GetMetaObject()) != nullptr) {
        return None(Cause::kExtendsExtension, object, *metaClass);
    }
    if (const KeptSearch known = FindKept(object, metaClass); known.found) return known.found;

    std::unique_ptr<LYRSysTSBaseUnknown> instance = Make(KeptExtension, create);
    if (instance == nullptr) return None(Cause::kWrongKind, object, *metaClass);
    // Searched again: the creation function may have asked for extensions of the same object.
    const KeptSearch now = FindKept(object, metaClass);
    if (now.found != nullptr) return now.found;

    std::unique_ptr<LYRSysTSChainExtension> link(new (std::nothrow)
                                                     LYRSysTSChainExtension(instance.get()));
    if (link == nullptr) return nullptr;
    // Not before: one that is thrown away above has nothing to do with the object.
    ObjectAccess::SetExtended(*instance, &object);
    if (now.last == nullptr) {
        ObjectAccess::SetChain(object, link.get());
    } else if (now.last->SetNextChainExtension(link.get()) != S_OK) {
        return nullptr;
    }
    static_cast<void>(link.release());
    return instance.release();
}

/// What an extension extends in the end, a component; null for a component.
LYRSysTSBaseUnknown* RootOf(const LYRSysTSBaseUnknown& object) {
    LYRSysTSBaseUnknown* const extended = Counting(object).extended;
    if (extended == nullptr) return nullptr;
    LYRSysTSBaseUnknown* const root = RootOf(*extended);
    return root != nullptr ? root : extended;
}

bool IsOfClass(const LYRSysTSBaseUnknown& object, const LYRSysTSMetaClass* metaClass) {
    const LYRSysTSMetaClass* const metaObject = object.GetMetaObject();
    if (metaObject == nullptr) return false;
    return metaObject == metaClass || metaObject->IsAKindOf(metaClass) != 0;
}

}  // namespace

LYRSysTSBaseUnknown* FindOrMakeImplementation(LYRSysTSBaseUnknown* object,
                                              LYRSysTSMetaClass* metaClass,
                                              LYRSysTSBaseUnknown* (*create)()) {
    if (object == nullptr || metaClass == nullptr) return nullptr;
    LYRSysTSMetaClassExt* const extension = ToExtension(metaClass);
    if (extension == nullptr) {
        return IsOfClass(*object, metaClass) ? object
                                             : None(Cause::kNotOfClass, *object, *metaClass);
    }

    // The component's first, as factories hold it while they use its extensions.
    const ObjectLock rootLock(RootOf(*object));
    const ObjectLock lock(object);
    switch (extension->GetExtensionType()) {
        case TransientExtension:
            return MakeTransient(*object, metaClass, create);
        case KeptExtension:
            return FindOrMakeKept(*object, metaClass, create);
        default:
            return nullptr;
    }
}

}  // namespace lyr::internal
