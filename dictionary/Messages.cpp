#include "dictionary/Messages.h"

#include "lyr/explain.h"
#include "support/MutexGuard.h"
#include "support/Shortage.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <mutex>
#include <new>

namespace lyr::internal {

namespace {

/// Of the thread that scans, which holds the lock; null outside a scan.
constinit std::vector<Message>* kept LYR_GUARDED_BY(GetGlobalDicoMutex()) = nullptr;

/// Who takes the messages; without one, standard error does.
struct Handler {
    MessageHandler take = nullptr;
    void* context = nullptr;
};

constinit std::mutex handlerMutex;
constinit Handler handler;  // guarded by it

Handler CurrentHandler() {
    const std::lock_guard<std::mutex> guard(handlerMutex);
    return handler;
}

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

/// Gives the message to the handler, cut off when memory is out, or writes it.
void Tell(const char* format, std::va_list arguments) {
    const Handler current = CurrentHandler();
    if (current.take == nullptr) {
        std::vfprintf(stderr, format, arguments);
        return;
    }
    std::va_list again;
    va_copy(again, arguments);
    try {
        current.take(Format(format, arguments).c_str(), current.context);
    } catch (const std::bad_alloc&) {
        char text[512];
        std::vsnprintf(text, sizeof text, format, again);
        current.take(text, current.context);
    }
    va_end(again);
}

}  // namespace

void Say(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    if (!Keep(0, format, arguments)) Tell(format, arguments);
    va_end(arguments);
}

void SayFailure(const char* call, const char* path, int error) {
    if (Keep(error, "Error : %s on %s\n--> %s(): ", call, path, call)) return;
    Say("Error : %s on %s\n--> %s(): %s\n", call, path, call, std::strerror(error));
}

void Message::Write() const {
    if (error == 0) {
        lyr::Say(text.c_str());
    } else {
        Say("%s%s\n", text.c_str(), std::strerror(error));
    }
}

KeepMessages::KeepMessages(std::vector<Message>& messages) {
    kept = &messages;
}

KeepMessages::~KeepMessages() {
    kept = nullptr;
}

}  // namespace lyr::internal

void lyr::SetMessageHandler(MessageHandler handler, void* context) noexcept {
    const std::lock_guard<std::mutex> guard(internal::handlerMutex);
    internal::handler = {handler, context};
}

void lyr::Say(const char* text) noexcept {
    if (text != nullptr) internal::Say("%s", text);
}
