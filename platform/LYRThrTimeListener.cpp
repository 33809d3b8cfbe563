#include "LYRThrTimeListener.h"

#include <atomic>

namespace {

constinit std::atomic<LYRThrTimeListener*> current = nullptr;

}  // namespace

LYRThrTimeListener* LYRThrTimeListener::Current() noexcept {
    return current.load(std::memory_order_acquire);
}

void LYRThrTimeListener::SetCurrent(LYRThrTimeListener* listener) noexcept {
    current.store(listener, std::memory_order_release);
}
