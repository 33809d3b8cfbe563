#include "dictionary/Messages.h"

#include "support/MutexGuard.h"
#include "support/Shortage.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>

namespace lyr::internal {

namespace {

/// Of the thread that scans, which holds the lock; null outside a scan.
constinit std::vector<Message>* kept LYR_GUARDED_BY(GetGlobalDicoMutex()) = nullptr;

std::string Format(const char* format, std::va_list arguments) {
    std::va_list again;
    va_copy(again, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, again);
    va_end(again);
    std::string text(length > 0 ? static_cast<std::size_t>(length) : 0, '\0');
    std::vsnprintf(text.data(), text.size() + 1, format, arguments);
    return text;
}

/// Keeps the message for later; false when this thread is not scanning.
bool Keep(int error, const char* format, std::va_list arguments) {
    const MutexGuard guard(*GetGlobalDicoMutex());
    if (kept == nullptr) return false;
    std::vector<Message>& messages = *kept;
    return RefuseOnShortage(true, [&] {
        messages.push_back({Format(format, arguments), error});
        return true;
    });
}

[[gnu::format(printf, 2, 3)]] bool Keep(int error, const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    const bool isKept = Keep(error, format, arguments);
    va_end(arguments);
    return isKept;
}

}  // namespace

void Say(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    if (!Keep(0, format, arguments)) std::vfprintf(stderr, format, arguments);
    va_end(arguments);
}

void SayFailure(const char* call, const char* path, int error) {
    if (Keep(error, "Error : %s on %s\n--> %s(): ", call, path, call)) return;
    std::fprintf(stderr, "Error : %s on %s\n--> %s(): %s\n", call, path, call,
                 std::strerror(error));
}

void Message::Write() const {
    if (error == 0) {
        std::fputs(text.c_str(), stderr);
    } else {
        std::fprintf(stderr, "%s%s\n", text.c_str(), std::strerror(error));
    }
}

KeepMessages::KeepMessages(std::vector<Message>& messages) {
    kept = &messages;
}

KeepMessages::~KeepMessages() {
    kept = nullptr;
}

}  // namespace lyr::internal
