#include "FailingAllocations.h"

#include "LYRExport.h"
#include "LYRSysTSDictionary.h"
#include "LYRSysTSFindOrCreateMetaObject.h"

#include <cerrno>
#include <cstdlib>
#include <dlfcn.h>
#include <new>
#include <utility>

// Called before a sanitizer is ready for instrumented code.
#define LYR_EARLY __attribute__((no_sanitize("address", "thread", "undefined")))

Failures failures;

LYR_EARLY static bool Fails() {
    if (failures.next == 0 || --failures.next > 0) return false;
    failures.next = failures.fromThenOn ? 1 : 0;
    ++failures.failed;
    errno = ENOMEM;
    return true;
}

// In place of the definitions of the C library or the sanitizer, which come next.
#define LYR_INTERPOSE(name, parameters, arguments)                            \
    extern "C" LYR_EARLY LYR_EXPORT void* name parameters noexcept {          \
        static void*(*next)parameters = nullptr;                              \
        if (next == nullptr) {                                                \
            next = reinterpret_cast<decltype(next)>(dlsym(RTLD_NEXT, #name)); \
        }                                                                     \
        return Fails() ? nullptr : next arguments;                            \
    }
LYR_INTERPOSE(malloc, (std::size_t size), (size))
LYR_INTERPOSE(calloc, (std::size_t nmemb, std::size_t size), (nmemb, size))
LYR_INTERPOSE(realloc, (void* ptr, std::size_t size), (ptr, size))

// NOLINTBEGIN(misc-new-delete-overloads): delete is that of the sanitizer, or of the library
LYR_EARLY void* operator new(std::size_t size) {
    if (void* memory = malloc(size)) return memory;
    throw std::bad_alloc();
}
LYR_EARLY void* operator new[](std::size_t size) {
    return operator new(size);
}
LYR_EARLY void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return malloc(size);
}
LYR_EARLY void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return malloc(size);
}

// NOLINTEND(misc-new-delete-overloads)

/// What `new` has from malloc goes back through the sanitizer's `delete`.
extern "C" LYR_EXPORT const char* __asan_default_options() {
    return "alloc_dealloc_mismatch=0";
}

/// In place of the library's, for the initialisers of the libraries that load: one that throws ends
/// the process, so these have memory enough.
LYRSysTSMetaClass* LYRSysTSFindOrCreateMetaObject(const char* name, LYRSysTSTypeOfClass type,
                                                  const GUID* clsid, LYRSysTSMetaClass* base,
                                                  const char* extendedName) {
    const int next = std::exchange(failures.next, 0);
    auto* meta = LYRSysTSDictionary::FindOrCreateMetaObject(name, type, clsid, base, extendedName);
    failures.next = next;
    return meta;
}
