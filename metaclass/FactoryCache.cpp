#include "metaclass/FactoryCache.h"

#include <atomic>
#include <bit>
#include <cstdint>

namespace lyr::internal {

namespace {

/// One answer, on a cache line of its own. The version is odd while a thread writes; a reader that
/// sees the same even version before and after has read one answer whole.
struct alignas(64) Line {
    std::atomic<std::uint64_t> version;
    std::atomic<const LYRSysTSMetaClassBase*> metaObject;
    std::atomic<std::uint64_t> iidLow;
    std::atomic<std::uint64_t> iidHigh;
    std::atomic<LYRSysTSInterfaceFactory> factory;
};

struct Halves {
    std::uint64_t low;
    std::uint64_t high;
};

constinit Line lines[FactoryCache::kPlaces] = {};

}  // namespace

LYRSysTSInterfaceFactory FactoryCache::Find(const LYRSysTSMetaClassBase* metaObject,
                                            const GUID& iid) {
    const Line& line = lines[PlaceOf(metaObject, iid)];
    const auto halves = std::bit_cast<Halves>(iid);
    const std::uint64_t version = line.version.load(std::memory_order_acquire);
    if (line.metaObject.load(std::memory_order_acquire) != metaObject ||
        line.iidLow.load(std::memory_order_acquire) != halves.low ||
        line.iidHigh.load(std::memory_order_acquire) != halves.high) {
        return nullptr;
    }
    const LYRSysTSInterfaceFactory factory = line.factory.load(std::memory_order_acquire);
    const bool whole = version % 2 == 0 && line.version.load(std::memory_order_relaxed) == version;
    return whole ? factory : nullptr;
}

void FactoryCache::Keep(const LYRSysTSMetaClassBase* metaObject, const GUID& iid,
                        LYRSysTSInterfaceFactory factory) {
    Line& line = lines[PlaceOf(metaObject, iid)];
    std::uint64_t version = line.version.load(std::memory_order_relaxed);
    // Another thread is writing: its answer, for another key, is as good to keep as this one.
    if (version % 2 != 0) return;
    if (!line.version.compare_exchange_strong(version, version + 1, std::memory_order_acquire)) {
        return;
    }
    const auto halves = std::bit_cast<Halves>(iid);
    line.metaObject.store(metaObject, std::memory_order_release);
    line.iidLow.store(halves.low, std::memory_order_release);
    line.iidHigh.store(halves.high, std::memory_order_release);
    line.factory.store(factory, std::memory_order_release);
    line.version.store(version + 2, std::memory_order_release);
}

void FactoryCache::Forget(const LYRSysTSMetaClassBase* metaObject) {
    for (Line& line : lines) {
        const LYRSysTSMetaClassBase* seen = line.metaObject.load(std::memory_order_relaxed);
        if (seen != metaObject) continue;
        // A thread that is writing there meanwhile has put another meta-object in its place.
        line.metaObject.compare_exchange_strong(seen, nullptr, std::memory_order_relaxed);
    }
}

}  // namespace lyr::internal
