#include "LoadedLibraries.h"

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <functional>
#include <iterator>
#include <mutex>
#include <new>
#include <pthread.h>
#include <string_view>

namespace lyr::internal {

namespace {

/// The name stands behind it.
struct Entry {
    LoadedLibrary library;
    const char* name;
    Entry* next;
    pthread_t loader;
    std::atomic<bool> isKnownToAll;
};

// Chains that grow at their heads. Hundreds of libraries are some in each.
constinit std::atomic<Entry*> heads[256] = {};
constinit std::mutex growing;

std::atomic<Entry*>& HeadOf(const char* name) {
    return heads[std::hash<std::string_view>()(name) % std::size(heads)];
}

Entry* FindEntry(const std::atomic<Entry*>& head, const char* name) {
    Entry* entry = head.load(std::memory_order_acquire);
    while (entry != nullptr && std::strcmp(entry->name, name) != 0) entry = entry->next;
    return entry;
}

}  // namespace

const LoadedLibrary* LoadedLibraries::Find(const char* name) {
    const Entry* const entry = FindEntry(HeadOf(name), name);
    if (entry == nullptr) return nullptr;
    // Acquire: whoever has told all comes after the initialisers.
    if (entry->isKnownToAll.load(std::memory_order_acquire)) return &entry->library;
    return ::pthread_equal(entry->loader, ::pthread_self()) != 0 ? &entry->library : nullptr;
}

void LoadedLibraries::Keep(const char* name, void* handle) {
    link_map* map = nullptr;
    if (::dlinfo(handle, RTLD_DI_LINKMAP, &map) != 0) return;
    std::atomic<Entry*>& head = HeadOf(name);
    // Another time, when another thread is at it; also one that a forked child does not have.
    const std::unique_lock<std::mutex> guard(growing, std::try_to_lock);
    if (!guard.owns_lock()) return;
    if (Entry* const known = FindEntry(head, name)) {
        if (::pthread_equal(known->loader, ::pthread_self()) != 0) return;
        return known->isKnownToAll.store(true, std::memory_order_release);
    }
    const std::size_t length = std::strlen(name) + 1;
    void* const memory = std::malloc(sizeof(Entry) + length);
    if (memory == nullptr) return;
    char* const copy = static_cast<char*>(memory) + sizeof(Entry);
    std::memcpy(copy, name, length);
    Entry* const next = head.load(std::memory_order_relaxed);
    const LoadedLibrary library{handle, LibrarySymbols(*map)};
    head.store(new (memory) Entry{library, copy, next, ::pthread_self(), false},
               std::memory_order_release);
}

}  // namespace lyr::internal
