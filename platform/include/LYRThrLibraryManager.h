#pragma once

#include "LYRExport.h"

#include <cstddef>
#include <cstdint>
#include <string>

class LYRThrLoadListener;

/// Loads shared libraries by the names that dictionaries give them, and finds functions in them.
///
/// The name "Geometry" reaches the file libGeometry.so; so do "libGeometry" and "libGeometry.so".
/// The dynamic loader searches for the file as for any other library. A name with a "/" is the path
/// of the file, or of its directory and the name: "plugins/Geometry" also reaches
/// plugins/libGeometry.so. A library stays loaded for the life of the process, its symbols kept to
/// itself. Failures are not remembered: a library that is installed later is found by the next
/// request. Any thread may call at any time; no lock of ours is held while a library loads, so that
/// its initialisers may call back. An exception that leaves one of these ends the process.
class LYR_EXPORT LYRThrLibraryManager {
public:
    LYRThrLibraryManager() = delete;

    /// Loads the library unless it is loaded already. A non-null handle that the caller does not
    /// own, or null: no such library, one that cannot be loaded, a null or empty name, or no
    /// memory.
    static void* LoadLibrary(const char* name);
    /// The same. `mayPass` then tells whether it failed for want of memory or of file descriptors,
    /// so that the same call may succeed at another time; false after success. A `listener`, which
    /// may be null, hears what is met.
    static void* TryLoadLibrary(const char* name, bool& mayPass,
                                LYRThrLoadListener* listener = nullptr);

    /// The address of the function `symbol` in the library, which is loaded first if need be. Null
    /// when the library does not load, when `symbol` is null, or when the library itself does not
    /// define it: a function of the same name in one of its dependencies does not count.
    static void* GetFunctionAddress(const char* library, const char* symbol);
    /// The same; `mayPass` and `listener` as above.
    static void* TryGetFunctionAddress(const char* library, const char* symbol, bool& mayPass,
                                       LYRThrLoadListener* listener = nullptr);

    /// Names a folder in which libraries are looked for where the dynamic loader finds none under
    /// their name, so that neither a run path nor an environment variable is needed. Folders are
    /// tried in the order of naming; a library whose name is a path is not looked for in them. A
    /// folder that is not there is passed over. A relative one is taken as FolderOf does. False
    /// when FolderOf fails, and when memory is out.
    static bool AddFolder(const char* folder, const void* origin);

    /// Writes the absolute path of a folder to `path`, which has room for `size` characters. A
    /// relative one starts where the file lies, behind all links, to which `origin` belongs: the
    /// address of a function or variable of the program or library that names the folder; with a
    /// null `origin` in the current directory. Links on its way are followed, so that all relative
    /// ones that lead to one folder give one path, if it is there. False, with an empty path, for a
    /// null or empty folder, for an address of no file, and where the room does not do.
    static bool FolderOf(const char* folder, const void* origin, char* path, std::size_t size);

    /// A mark of this moment, for the next.
    static std::uint64_t MarkLoads();

    /// Whether a library may have been loading at any moment since the mark was taken. It never
    /// waits, neither for the loader nor for an initialiser. A library that the program loads by
    /// itself, while it has several threads, counts as loading for three seconds from the moment
    /// that it is noticed, by this or by the next load.
    static bool MayHaveBeenLoadingSince(std::uint64_t mark);

    /// Whether it makes sense to wait for what may be loading: not in the thread that loads it, nor
    /// where there is no other thread, and not after GiveUpOnLoads, until another library begins to
    /// load.
    static bool MayAwaitLoads();
    static void GiveUpOnLoads();

    /// Why the last failure of LoadLibrary or GetFunctionAddress came about, as far as possible in
    /// the dynamic loader's own words; empty while none has failed. When several files were tried,
    /// the words are about one that exists but cannot be loaded, if there is such. A copy, for
    /// people to read; it may be cut off at some 2000 characters.
    static std::string LastFailure();
};
