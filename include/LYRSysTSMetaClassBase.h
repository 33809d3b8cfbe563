#pragma once

#include "LYRSmartMutex.h"
#include "LYRSysTSInterfaceFactory.h"
#include "LYRSysTSMetaClass.h"

class LYRSysTSMetaClassExt;

/// The newest meta-object; the others follow through `_nextMeta`.
extern LYR_EXPORT LYRSysTSMetaClassBase* sHeadMeta;

/// The meta-object of a class without interface implementations.
class LYR_EXPORT LYRSysTSMetaClassBase : public LYRSysTSMetaClass {
public:
    /// Describes the class `name` with the id `clsid`, derived from that of `base`; each may be
    /// null. The object goes on the list of all meta-objects, is made with `new`, and is freed by
    /// Destruct alone. One thread at a time may make one: LYRSysTSFindOrCreateMetaObject sees to
    /// that. Throws std::bad_alloc, with the object off the list.
    LYRSysTSMetaClassBase(const GUID* clsid, const char* name, LYRSysTSMetaClass* base);
    LYRSysTSMetaClassBase(const LYRSysTSMetaClassBase&) = delete;
    LYRSysTSMetaClassBase& operator=(const LYRSysTSMetaClassBase&) = delete;

    using LYRSysTSMetaClass::IsAKindOf;

    const char* IsA() const override;
    int IsAKindOf(const char* name) const override;
    const GUID* GetClassId() const override;
    int IsAKindOf(const GUID& id) const override;
    LYRSysTSMetaClass* GetMetaObjectOfBaseClass() const override;
    LYRSysTSMetaClassBase* ToMetaClassBase() override;
    ~LYRSysTSMetaClassBase() override;

    /// The factory that builds the interface `iid` for objects of this class, or null. Finding one
    /// may read the dictionary files and load libraries. Always null for a class without interface
    /// implementations.
    virtual LYRSysTSInterfaceFactory QueryDerivationInterfaceFactory(const GUID& iid);

    /// This object as an extension's meta-object; null when it is none.
    virtual LYRSysTSMetaClassExt* CastToMetaExtension();

    /// Frees every meta-object, newest first. For the very end of the application: the dictionary
    /// and the classes still point at them, and nothing may reach them any more.
    static void Destruct();

protected:
    LYRSmartMutex _mutex;  ///< guards the factory table of the implementation classes
    const GUID* _classId;
    const char* _className;
    LYRSysTSMetaClassBase* _baseMeta;
    LYRSysTSMetaClassBase* _nextMeta;

private:
    friend class LYRSysTSDictionary;

    /// Frees the newest meta-object, which nobody else knows yet.
    LYR_LOCAL static void Discard(LYRSysTSMetaClassBase* newest);
};
