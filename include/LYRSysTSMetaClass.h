#pragma once

#include "GUID.h"
#include "LYRExport.h"

class LYRSysTSMetaClassBase;

/// What the system knows at run time about a class. One object of it describes one class; it is
/// found or made by LYRSysTSFindOrCreateMetaObject and lives until LYRSysTSMetaClassBase::Destruct.
/// Every operation may be called by any thread.
class LYR_EXPORT LYRSysTSMetaClass {
public:
    LYRSysTSMetaClass();
    LYRSysTSMetaClass(const LYRSysTSMetaClass&) = delete;
    LYRSysTSMetaClass& operator=(const LYRSysTSMetaClass&) = delete;

    /// The class name, interned; null when it has none.
    virtual const char* IsA() const = 0;
    /// 1 when the class or one of its bases has this name, this id, or is `other`; else 0. A class
    /// without a name or an id is passed over, and null matches nothing.
    virtual int IsAKindOf(const char* name) const = 0;
    /// The class id, interned; null when it has none.
    virtual const GUID* GetClassId() const = 0;
    virtual int IsAKindOf(const GUID& id) const = 0;
    virtual int IsAKindOf(const LYRSysTSMetaClass* other) const;
    /// The meta-object of the base class, or null.
    virtual LYRSysTSMetaClass* GetMetaObjectOfBaseClass() const = 0;
    /// This object with the operations that the system needs, or null when it lacks them.
    virtual LYRSysTSMetaClassBase* ToMetaClassBase() = 0;
    virtual ~LYRSysTSMetaClass();
};
