#include "explanation/TraceEvent.h"

#include <cstdio>
#include <string_view>
#include <unistd.h>

namespace lyr::internal {

namespace {

/// How many bytes at the front of the text are one character of UTF-8; 0 for none.
std::size_t LengthOfCharacter(std::string_view text) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned first = byte(0);
    if (first < 0x80) return 1;
    const std::size_t length = first < 0xC2 ? 0 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
    if (length == 0 || first > 0xF4 || text.size() < length) return 0;
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xC0) != 0x80) return 0;
    }
    // Longer than need be, half of a pair of UTF-16, or beyond the last character.
    const unsigned second = byte(1);
    const bool isNone = (first == 0xE0 && second < 0xA0) || (first == 0xED && second > 0x9F) ||
                        (first == 0xF0 && second < 0x90) || (first == 0xF4 && second > 0x8F);
    return isNone ? 0 : length;
}

std::string Quoted(std::string_view text) {
    std::string quoted = "\"";
    while (!text.empty()) {
        const std::size_t length = LengthOfCharacter(text);
        const char first = text.front();
        if (length == 0) {
            quoted += "\\ufffd";
        } else if (first == '"' || first == '\\') {
            quoted += {'\\', first};
        } else if (static_cast<unsigned char>(first) < 0x20) {
            char code[8];
            std::snprintf(code, sizeof code, "\\u%04x",
                          unsigned{static_cast<unsigned char>(first)});
            quoted += code;
        } else {
            quoted += text.substr(0, length);
        }
        text.remove_prefix(length == 0 ? 1 : length);
    }
    return quoted + "\"";
}

/// In microseconds, to the nanosecond: rounded, a slice might end after the one around it.
std::string InMicroseconds(std::chrono::nanoseconds time) {
    char text[32];
    std::snprintf(text, sizeof text, "%lld.%03d", static_cast<long long>(time.count() / 1000),
                  static_cast<int>(time.count() % 1000));
    return text;
}

std::string ProcessAndThread() {
    return ",\"pid\":" + std::to_string(::getpid()) + ",\"tid\":" + std::to_string(::gettid()) +
           ",\"args\":{";
}

}  // namespace

TraceEvent TraceEvent::Slice(const std::string& name, const char* category, Clock::time_point begin,
                             Clock::time_point end) {
    TraceEvent event(Quoted(name));
    event._text += ",\"cat\":" + Quoted(category);
    event._text += R"(,"ph":"X","ts":)" + InMicroseconds(begin.time_since_epoch());
    event._text += ",\"dur\":" + InMicroseconds(end - begin) + ProcessAndThread();
    return event;
}

TraceEvent TraceEvent::Name(const char* what, const char* name) {
    TraceEvent event(Quoted(what));
    event._text += R"(,"ph":"M")" + ProcessAndThread();
    return event.Add("name", name);
}

TraceEvent& TraceEvent::Add(const char* key, const char* text) {
    if (text == nullptr || *text == '\0') return *this;
    AddKey(key);
    _text += Quoted(text);
    return *this;
}

TraceEvent& TraceEvent::Add(const char* key, bool isSo) {
    AddKey(key);
    _text += isSo ? "true" : "false";
    return *this;
}

TraceEvent& TraceEvent::Add(const char* key, int number) {
    AddKey(key);
    _text += std::to_string(number);
    return *this;
}

void TraceEvent::AddKey(const char* key) {
    if (_hasArguments) _text += ',';
    _hasArguments = true;
    _text += Quoted(key) + ":";
}

}  // namespace lyr::internal
