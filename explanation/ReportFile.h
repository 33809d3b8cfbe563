#pragma once

#include <string>
#include <sys/types.h>

namespace lyr::internal {

/// The file that reports go to, if one is named. While another process writes to it, and in a child
/// of this process, it is one with the process id behind its name.
class ReportFile {
public:
    ReportFile() = default;
    ~ReportFile();
    ReportFile(const ReportFile&) = delete;
    ReportFile& operator=(const ReportFile&) = delete;

    void Close();

    /// False, with the reason in errno, when it cannot be written.
    bool Open(const std::string& path);
    bool IsOpen() const { return _descriptor >= 0; }

    /// Writes the text in one piece; false when no file is open, or nothing of it could be written.
    bool Write(const std::string& text);

private:
    bool OpenOwn();

    std::string _path;
    int _descriptor = -1;
    pid_t _process = 0;
};

}  // namespace lyr::internal
