#include "Folders.h"

#include <cstdlib>
#include <cstring>
#include <mutex>
#include <new>

namespace lyr::internal {

namespace {

// Constant-initialised: initialisers of any library may name folders.
constinit std::atomic<Folders::Folder*> first = nullptr;
constinit std::mutex adding;

}  // namespace

const Folders::Folder* Folders::First() {
    return first.load(std::memory_order_acquire);
}

bool Folders::Add(const char* path) {
    const std::lock_guard<std::mutex> guard(adding);
    std::atomic<Folder*>* place = &first;
    while (Folder* const folder = place->load(std::memory_order_relaxed)) {
        if (std::strcmp(folder->path, path) == 0) return true;
        place = &folder->next;
    }
    const std::size_t length = std::strlen(path) + 1;
    void* const memory = std::malloc(sizeof(Folder) + length);
    if (memory == nullptr) return false;
    char* const copy = static_cast<char*>(memory) + sizeof(Folder);
    std::memcpy(copy, path, length);
    place->store(new (memory) Folder{nullptr, copy}, std::memory_order_release);
    return true;
}

}  // namespace lyr::internal
