#pragma once

#include "GUID.h"
#include "LYRExport.h"
#include "LYRSysTSInterfaceFactory.h"

#include <atomic>

/// One entry of the interface dictionary: what implements an interface of a class.
///
/// A record that a table of the dictionary reaches belongs to the dictionary until
/// _DeleteDictionary, and its address does not change until then. Every field goes from null to
/// its value at most once; other threads may do that while a reader looks, so a reader outside
/// the dictionary's lock loads `creator` atomically, and takes the lock to read the other fields of
/// an entry that may still be added to. The record owns nothing that it points at.
class LYR_EXPORT LYRSysTSInfoDic {
public:
    /// A record with every field null.
    LYRSysTSInfoDic() noexcept;
    ~LYRSysTSInfoDic();
    LYRSysTSInfoDic(const LYRSysTSInfoDic&) = delete;
    LYRSysTSInfoDic& operator=(const LYRSysTSInfoDic&) = delete;

    const GUID* clsid;          ///< interned class id
    const GUID* iid;            ///< interned interface id
    const char* className;      ///< interned class name
    const char* interfaceName;  ///< interned; "MetaObject" and "CreateInterface" are special
    const char* sharedLibrary;  ///< interned, without a leading "lib"
    const char* itfLeaf;        ///< interned; the leaf interface that implements the interface
    const char* extendedBy;     ///< interned; the extension class that implements it

    /// An interface factory; in a "MetaObject" entry the LYRSysTSMetaClass, in a "CreateInterface"
    /// entry the creation function, each in this type.
    std::atomic<LYRSysTSInterfaceFactory> creator;
};

static_assert(sizeof(LYRSysTSInfoDic) == 8 * sizeof(void*), "eight pointer-size fields");
