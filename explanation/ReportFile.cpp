#include "explanation/ReportFile.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/auxv.h>
#include <sys/file.h>
#include <unistd.h>

namespace lyr::internal {

namespace {

int OpenToAppend(const std::string& path) {
    return ::open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666);
}

}  // namespace

bool ReportFile::IsAllowed() {
    return ::getauxval(AT_SECURE) == 0;
}

ReportFile::~ReportFile() {
    Close();
}

void ReportFile::Close() {
    if (IsOpen()) ::close(_descriptor);
    _descriptor = -1;
}

bool ReportFile::Open(const std::string& path, Head head) {
    _path = path;
    _head = head;
    _process = ::getpid();
    _descriptor = OpenToAppend(path);
    if (!IsOpen()) return false;
    // The lock says that this process writes here; it goes with the process.
    return ::flock(_descriptor, LOCK_EX | LOCK_NB) == 0 ? Begin() : OpenOwn();
}

bool ReportFile::OpenOwn() {
    ::close(_descriptor);
    _process = ::getpid();
    _descriptor = OpenToAppend(_path + "." + std::to_string(_process));
    return IsOpen() && Begin();
}

bool ReportFile::Begin() {
    if (_head == nullptr) return true;
    // A device or a pipe has nothing to cut off.
    if (::ftruncate(_descriptor, 0) != 0 && errno != EINVAL) return false;
    return WriteAll(_head());
}

bool ReportFile::Write(const std::string& text) {
    if (IsOpen() && _process != ::getpid() && !OpenOwn()) return false;
    return IsOpen() && WriteAll(text);
}

bool ReportFile::WriteAll(const std::string& text) const {
    std::size_t written = 0;
    while (written < text.size()) {
        const ssize_t count = ::write(_descriptor, text.data() + written, text.size() - written);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return false;
        written += static_cast<std::size_t>(count);
    }
    return true;
}

}  // namespace lyr::internal
