#pragma once

#include "LibrarySymbols.h"

namespace lyr::internal {

/// A library that has been loaded under a name. It stays loaded, so all this stays as it is.
struct LoadedLibrary {
    void* handle;
    LibrarySymbols symbols;
};

/// The libraries that have been loaded here, by the names that were used for them, so that the
/// loader is not asked again, which compares a name with those of all libraries under its lock.
/// Failures are not kept. Any thread may call at any time.
class LoadedLibraries {
public:
    LoadedLibraries() = delete;

    /// The library of the name; null for one that is not known to this thread.
    ///
    /// What one thread has loaded is known to the others once one of them has loaded it too: the
    /// first may have done so in an initialiser of that very library, which the loader lets nobody
    /// else have before it has run.
    static const LoadedLibrary* Find(const char* name);

    /// Keeps what this thread has loaded; or not, without memory.
    static void Keep(const char* name, void* handle);
};

}  // namespace lyr::internal
