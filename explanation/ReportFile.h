#pragma once

#include <string>
#include <sys/types.h>

namespace lyr::internal {

/// The file that reports go to, if one is named. While another process writes to it, and in a child
/// of this process, it is one with the process id behind its name. What is there already stays, or
/// gives way to what the file has to begin with.
class ReportFile {
public:
    ReportFile() = default;
    ~ReportFile();
    ReportFile(const ReportFile&) = delete;
    ReportFile& operator=(const ReportFile&) = delete;

    /// Whether files may be written at all: a program with rights that its user has not writes none
    /// for him.
    static bool IsAllowed();

    /// What a file begins with. Throws std::bad_alloc.
    using Head = std::string (*)();

    void Close();

    /// False, with the reason in errno, when it cannot be written.
    bool Open(const std::string& path, Head head = nullptr);
    bool IsOpen() const { return _descriptor >= 0; }

    /// Writes the text in one piece; false when no file is open, or not all of it could be written.
    bool Write(const std::string& text);

private:
    bool OpenOwn();
    bool Begin();
    bool WriteAll(const std::string& text) const;

    std::string _path;
    Head _head = nullptr;
    int _descriptor = -1;
    pid_t _process = 0;
};

}  // namespace lyr::internal
