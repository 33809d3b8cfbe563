#pragma once

#include <atomic>

namespace lyr::internal {

/// The folders of libraries that programs and libraries have named, in the order of naming. They
/// stay. Any thread may look at any time, without a lock.
class Folders {
public:
    struct Folder {
        std::atomic<Folder*> next;
        const char* path;
    };

    Folders() = delete;

    /// The first one; null for none.
    static const Folder* First();

    /// Adds one behind the others, unless it is there already. False when memory is out.
    static bool Add(const char* path);
};

}  // namespace lyr::internal
