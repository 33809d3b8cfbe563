#include "Folders.h"
#include "LYRThrLibraryManager.h"

#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <link.h>
#include <unistd.h>

namespace {

/// The file of the program or library that the address belongs to, in `file`, behind all links.
bool FileOf(const void* address, char (&file)[PATH_MAX]) {
    Dl_info info{};
    void* owner = nullptr;
    if (::dladdr1(address, &info, &owner, RTLD_DL_LINKMAP) == 0) return false;
    // The program itself has no name here; the one that it was started by need not lead to it.
    const char* const name = static_cast<const link_map*>(owner)->l_name;
    return ::realpath(*name != '\0' ? name : "/proc/self/exe", file) != nullptr;
}

/// Where a relative folder starts, without a "/" at its end.
bool StartOf(const void* origin, char (&start)[PATH_MAX]) {
    if (origin == nullptr) return ::getcwd(start, sizeof start) != nullptr;
    if (!FileOf(origin, start)) return false;
    *std::strrchr(start, '/') = '\0';
    return true;
}

/// Puts the folder behind all links in the place of the path, if it is there.
void FollowLinks(char* path, std::size_t size) {
    char real[PATH_MAX];
    if (::realpath(path, real) == nullptr) return;
    const std::size_t length = std::strlen(real);
    if (length < size) std::memcpy(path, real, length + 1);
}

}  // namespace

bool LYRThrLibraryManager::FolderOf(const char* folder, const void* origin, char* path,
                                    std::size_t size) {
    if (size == 0) return false;
    *path = '\0';
    if (folder == nullptr || *folder == '\0') return false;
    char start[PATH_MAX] = "";
    const bool isAbsolute = *folder == '/';
    if (!isAbsolute && !StartOf(origin, start)) return false;
    const int length = std::snprintf(path, size, "%s%s%s", start, isAbsolute ? "" : "/", folder);
    if (length < 0 || static_cast<std::size_t>(length) >= size) {
        *path = '\0';
        return false;
    }
    if (!isAbsolute) FollowLinks(path, size);
    return true;
}

bool LYRThrLibraryManager::AddFolder(const char* folder, const void* origin) {
    char path[PATH_MAX];
    return FolderOf(folder, origin, path, sizeof path) && lyr::internal::Folders::Add(path);
}
