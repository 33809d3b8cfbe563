#pragma once

#include "LYRSysTSMetaClassImpl.h"
#include "LYRSysTSTypeOfClass.h"

#include <cstdint>

namespace lyr::internal {
class DictionarySearch;
}

/// The meta-object of an extension: a class that implements interfaces for objects of other
/// classes, which it lists by name.
class LYR_EXPORT LYRSysTSMetaClassExt : public LYRSysTSMetaClassImpl {
public:
    /// As LYRSysTSMetaClassBase; `type` says how instances live and is not checked.
    LYRSysTSMetaClassExt(const GUID* clsid, const char* name, LYRSysTSMetaClass* base,
                         LYRSysTSTypeOfClass type);
    LYRSysTSMetaClassExt(const LYRSysTSMetaClassExt&) = delete;
    LYRSysTSMetaClassExt& operator=(const LYRSysTSMetaClassExt&) = delete;
    ~LYRSysTSMetaClassExt() override;

    LYRSysTSMetaClassExt* CastToMetaExtension() override;

    /// How instances of the extension live: the type that the constructor was given.
    LYRSysTSTypeOfClass GetExtensionType();

    /// Adds a class name to the list, once. Null, and a lack of memory, change nothing; after the
    /// latter, what requests do not find in this list is never remembered.
    void SetExtensionOf(const char* className);

    /// Whether this very address, an interned name, is on the list.
    bool _IsExtensionOf(const char* internedName);

    /// Whether the class that `meta` describes is on the list. Its bases do not count.
    bool IsExtensionOf(const LYRSysTSMetaClass* meta);

    /// SetExtensionOf on `meta` when it is an extension's; otherwise nothing. Both may be null.
    static void AddExtendedComponent(LYRSysTSMetaClass* meta, const char* className);

private:
    friend class LYRSysTSDictionary;
    friend class lyr::internal::DictionarySearch;

    /// SetExtensionOf, which tells a lack of memory: false.
    LYR_LOCAL bool TryToList(const char* className);
    LYR_LOCAL void List(const char* internedName);
    LYR_LOCAL void MakeRoom() LYR_REQUIRES(_extMutex);
    LYR_LOCAL bool Lists(const char* internedName) const LYR_REQUIRES(_extMutex);

    /// Whether memory has run out in adding a name: the list may be shorter than it should be.
    LYR_LOCAL bool LacksNames();

    const char** _extendedClasses LYR_GUARDED_BY(_extMutex);
    std::int32_t _extendedCount LYR_GUARDED_BY(_extMutex);
    std::int32_t _extendedCapacity LYR_GUARDED_BY(_extMutex);
    LYRSysTSTypeOfClass _typeOfClass;
    bool _lacksNames LYR_GUARDED_BY(_extMutex);
    LYRSmartMutex _extMutex;
};
