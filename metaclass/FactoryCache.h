#pragma once

#include "GUID.h"
#include "LYRSysTSInterfaceFactory.h"
#include "support/GuidBytes.h"

#include <cstddef>
#include <cstdint>

class LYRSysTSMetaClassBase;

namespace lyr::internal {

/// The answers that the factory tables of all classes have given lately, so that a request which is
/// made over and over finds its answer without the lock and the search of a table. What stands here
/// is what the table answers; what is pushed out is found there again. Any thread may look at any
/// time.
class FactoryCache {
public:
    FactoryCache() = delete;

    /// The answer of the table of `metaObject` for `iid`, _LYRSysTSNoSuchInterface included; null
    /// when it is not here.
    static LYRSysTSInterfaceFactory Find(const LYRSysTSMetaClassBase* metaObject, const GUID& iid);

    /// Keeps an answer, in the place of another one. The caller holds the lock of the meta-object's
    /// table, so that an older answer of it never comes later.
    static void Keep(const LYRSysTSMetaClassBase* metaObject, const GUID& iid,
                     LYRSysTSInterfaceFactory factory);

    /// In which of so many places an answer is kept.
    static constexpr std::size_t kPlaces = 4096;
    static std::size_t PlaceOf(const LYRSysTSMetaClassBase* metaObject, const GUID& iid) {
        const auto address = reinterpret_cast<std::uintptr_t>(metaObject) >> 4;
        return (GuidHash(iid) + address * 0x9E3779B9) % kPlaces;
    }

    /// Drops the answers of a meta-object that is going away, before another one takes its address.
    static void Forget(const LYRSysTSMetaClassBase* metaObject);
};

}  // namespace lyr::internal
