#pragma once

#include <atomic>
#include <type_traits>

namespace lyr::internal {

/// A plain pointer that one thread may read while another sets it: what is read has been written
/// whole, and so has what it points at.
template <typename T>
T* LoadShared(T* const& field) noexcept {
    // atomic_ref takes no const object in C++20; a load changes nothing.
    return std::atomic_ref<T*>(const_cast<T*&>(field)).load(std::memory_order_acquire);
}

template <typename T>
void StoreShared(T*& field, std::type_identity_t<T*> value) noexcept {
    std::atomic_ref<T*>(field).store(value, std::memory_order_release);
}

}  // namespace lyr::internal
