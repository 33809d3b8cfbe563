#pragma once

#include "LYRSysTSBaseUnknown.h"
#include "LYRSysTSChainExtension.h"
#include "metaclass/ToExtension.h"
#include "support/SharedField.h"

#include <utility>

namespace lyr::internal {

/// What the sources of this room need of an object's state. The link has two meanings, and the
/// object's kind says which. It is read without the lock too: to learn that there is none, and in
/// an extension, where it is set before anybody else knows the object.
struct ObjectAccess {
    static bool IsThreadSafe(const LYRSysTSBaseUnknown& object) {
        return object._mutex.HoldsLock();
    }

    /// The object's Lock and Unlock, in line: each request takes the lock twice.
    static void Lock(LYRSysTSBaseUnknown& object) LYR_NO_THREAD_SAFETY_ANALYSIS {
        object._mutex.LockF();
        ++object._lockDepth;
    }
    static void Unlock(LYRSysTSBaseUnknown& object) LYR_NO_THREAD_SAFETY_ANALYSIS {
        --object._lockDepth;
        object._mutex.UnlockF();
    }

    static bool HasLink(const LYRSysTSBaseUnknown& object) {
        return LoadShared(object._extensionLink) != nullptr;
    }

    /// Component object: the first link of its kept extensions, or null. Under its lock.
    static LYRSysTSChainExtension* Chain(const LYRSysTSBaseUnknown& object) {
        return static_cast<LYRSysTSChainExtension*>(LoadShared(object._extensionLink));
    }
    static void SetChain(LYRSysTSBaseUnknown& object, LYRSysTSChainExtension* first) {
        StoreShared(object._extensionLink, first);
    }

    /// Extension object: the object that it extends, or null.
    static LYRSysTSBaseUnknown* Extended(const LYRSysTSBaseUnknown& extension) {
        return static_cast<LYRSysTSBaseUnknown*>(LoadShared(extension._extensionLink));
    }
    static void SetExtended(LYRSysTSBaseUnknown& extension, LYRSysTSBaseUnknown* extended) {
        StoreShared(extension._extensionLink, extended);
    }
};

/// Who counts the references to an object.
enum class CountedBy {
    kItself,    ///< it extends nothing
    kBoth,      ///< itself and, each its own, the object that it extends
    kExtended,  ///< the object that it extends, in its place: it is a kept extension
};

struct Counting {
    CountedBy by = CountedBy::kItself;
    LYRSysTSBaseUnknown* extended = nullptr;  // null: counted by itself

    // Without a link it extends nothing, whatever its kind: most objects are answered by that.
    explicit Counting(const LYRSysTSBaseUnknown& object) {
        if (!ObjectAccess::HasLink(object)) return;
        LYRSysTSMetaClassExt* const extension = ToExtension(object.GetMetaObject());
        if (extension == nullptr) return;
        extended = ObjectAccess::Extended(object);
        const bool isKept = extension->GetExtensionType() == KeptExtension;
        by = isKept ? CountedBy::kExtended : CountedBy::kBoth;
    }
};

/// Holds the lock of an object while it lives, or until Release; does nothing for null and for an
/// object that has none.
class ObjectLock {
public:
    explicit ObjectLock(LYRSysTSBaseUnknown* object)
        : _locked(object != nullptr && ObjectAccess::IsThreadSafe(*object) ? object : nullptr) {
        if (_locked != nullptr) ObjectAccess::Lock(*_locked);
    }
    ~ObjectLock() { Release(); }
    ObjectLock(const ObjectLock&) = delete;
    ObjectLock& operator=(const ObjectLock&) = delete;

    /// Gives the lock back early; nothing of the object is touched after it.
    void Release() {
        if (_locked != nullptr) ObjectAccess::Unlock(*std::exchange(_locked, nullptr));
    }

    /// Forgets an object that is gone: its destructor has given back every hold.
    void ObjectIsGone() { _locked = nullptr; }

private:
    LYRSysTSBaseUnknown* _locked;
};

}  // namespace lyr::internal
