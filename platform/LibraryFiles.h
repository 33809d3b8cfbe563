#pragma once

namespace lyr::internal {

/// The files that the name of a library may mean, in the order of trying. Without memory of the
/// heap, so that a shortage here is not taken for an absent library.
class LibraryFiles {
public:
    /// `name` and `folder` must outlive the object; `name` is not null. Without a folder the files
    /// are those that the loader searches for, with one they lie in it; a name that is a path
    /// itself has none there.
    explicit LibraryFiles(const char* name, const char* folder = nullptr);

    /// The next file; null after the last one. Valid until the next call.
    const char* Next();

private:
    static constexpr int kFileSize = 8192;  // longer than any path that the system opens

    const char* const _name;
    const char* const _folder;
    const char* const _base;  // what stands behind the last "/"
    int _next = 0;
    char _file[kFileSize];
};

}  // namespace lyr::internal
