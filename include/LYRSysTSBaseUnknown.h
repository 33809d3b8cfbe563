#pragma once

#include "IUnknown.h"
#include "LYRSmartMutex.h"

#include <cstdint>

class LYRSysTSMetaClass;

namespace lyr::internal {
struct ObjectAccess;
}

/// The base class of every object of the component model.
///
/// The object's meta-object says what it is. A component object counts its own references and
/// owns its kept extensions. An extension object, one whose meta-object is a
/// LYRSysTSMetaClassExt, passes every QueryInterface on to the object that it extends and shares
/// its counting: a kept extension wholly, any other by holding one reference on that object for
/// each of its own.
///
/// An object built thread-safe may be used by any number of threads; any other by one at a time.
/// It is made with `new` and deletes itself when its count reaches 0.
class LYR_EXPORT LYRSysTSBaseUnknown : public IUnknown {
public:
    /// The count is 1: the creator's. A non-zero `threadSafe` gives the object a lock of its own.
    explicit LYRSysTSBaseUnknown(unsigned char threadSafe);
    LYRSysTSBaseUnknown(const LYRSysTSBaseUnknown&) = delete;
    LYRSysTSBaseUnknown& operator=(const LYRSysTSBaseUnknown&) = delete;

    /// S_OK with the interface in `*out`; one count of this object goes with it. Otherwise `*out`
    /// is null: E_NOINTERFACE when the class has no such interface, its factory gave none, or there
    /// is no meta-object, E_UNEXPECTED on an object whose count is 0 and on an extension without an
    /// extended object, E_FAIL for a null `out`. The factory runs under the object's lock; what it
    /// throws passes through, and leaves the lock free.
    HRESULT QueryInterface(const GUID& iid, void** out) override;
    std::uint32_t AddRef() override;
    std::uint32_t Release() override;

    /// The meta-object of the object's class. A derived class overrides it with its own.
    virtual LYRSysTSMetaClass* GetMetaObject() const;

    /// Gives back the holds that the deleting thread has on the lock. Kept extensions are deleted
    /// by Release, before this.
    virtual ~LYRSysTSBaseUnknown();

    /// Takes and gives back the object's lock. Only for an object built thread-safe. (An object
    /// without a lock is not locked at all, which the compiler's analysis cannot follow.) Lock
    /// throws std::system_error instead of taking the 2^16th nested hold, and so does every
    /// operation that takes the lock. Who locks an extension and uses the object that it extends
    /// locks that one first: factories run under its lock and use extensions.
    void Lock() LYR_NO_THREAD_SAFETY_ANALYSIS;
    void Unlock() LYR_NO_THREAD_SAFETY_ANALYSIS;

    /// The meta-object of this class, and its name and id. The first call of any of them, or of
    /// GetMetaObject, makes it; that one may throw std::bad_alloc, and the next tries again.
    static LYRSysTSMetaClass* MetaObject();
    static const char* ClassName();
    static const GUID* ClassId();

    /// The name of the object's class; null without a meta-object.
    const char* IsA() const;
    /// 1 when the object's class or one of its bases has this name; else 0.
    int IsAKindOf(const char* className) const;

    /// The meta-object of this class, null until it is first asked for.
    static LYRSysTSMetaClass* meta_object;

private:
    friend struct lyr::internal::ObjectAccess;

    LYR_LOCAL std::uint32_t RaiseCount();
    LYR_LOCAL std::uint32_t LowerCount();
    LYR_LOCAL void DeleteChain();

    LYRSmartMutex _mutex;  // guards the other fields, in an object that has a lock
    std::uint32_t _refCount;
    void* _extensionLink;     // component object: its first LYRSysTSChainExtension; extension: the
                              // LYRSysTSBaseUnknown that it extends; exactly of one of these types
    std::int32_t _lockDepth;  // holds of the lock that have not been given back
};
