#pragma once

#include "GUID.h"

#include <cstdint>

/// @file
/// Ids as text, read while the compiler works.

/// The id that is written "9ff2405a-cfea-461a-a560-f36c489875ab", as a constant. Any other form
/// does not compile. `inline constexpr CLSID kGreeterId = LYR_ID("...");`
#define LYR_ID(text)                                                                           \
    ([] {                                                                                      \
        static_assert(::lyr::detail::IsIdText(text),                                           \
                      "lyr: this is no id; an id looks like "                                  \
                      "\"9ff2405a-cfea-461a-a560-f36c489875ab\", and uuidgen makes new ones"); \
        return ::lyr::detail::ParseId(text);                                                   \
    }())

namespace lyr {
inline namespace v1 {
namespace detail {

constexpr int kIdLength = 36;

constexpr bool IsHyphenPlace(int place) {
    return place == 8 || place == 13 || place == 18 || place == 23;
}

/// -1 for a character that is no hexadecimal digit.
constexpr int HexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

constexpr bool IsIdText(const char* text) {
    for (int i = 0; i < kIdLength; ++i) {
        if (IsHyphenPlace(i) ? text[i] != '-' : HexDigit(text[i]) < 0) return false;
    }
    return text[kIdLength] == '\0';
}

/// The number in the digits from `first` to before `end`, of a text that IsIdText.
constexpr std::uint64_t HexNumber(const char* text, int first, int end) {
    std::uint64_t number = 0;
    for (int i = first; i < end; ++i) {
        if (!IsHyphenPlace(i)) number = number * 16 + static_cast<unsigned>(HexDigit(text[i]));
    }
    return number;
}

/// Zeros for a text that is no id, which the caller refuses with a sentence.
constexpr GUID ParseId(const char* text) {
    GUID id{};
    if (!IsIdText(text)) return id;
    id.Data1 = static_cast<std::uint32_t>(HexNumber(text, 0, 8));
    id.Data2 = static_cast<std::uint16_t>(HexNumber(text, 9, 13));
    id.Data3 = static_cast<std::uint16_t>(HexNumber(text, 14, 18));
    const std::uint64_t rest = HexNumber(text, 19, kIdLength);
    for (int i = 0; i < 8; ++i) id.Data4[i] = static_cast<std::uint8_t>(rest >> (56 - 8 * i));
    return id;
}

/// An id as two numbers, which a template can take, and back.
constexpr std::uint64_t IdHigh(const GUID& id) {
    return static_cast<std::uint64_t>(id.Data1) << 32 | static_cast<std::uint64_t>(id.Data2) << 16 |
           id.Data3;
}
constexpr std::uint64_t IdLow(const GUID& id) {
    std::uint64_t low = 0;
    for (const std::uint8_t byte : id.Data4) low = low << 8 | byte;
    return low;
}
constexpr GUID IdOfHalves(std::uint64_t high, std::uint64_t low) {
    GUID id{static_cast<std::uint32_t>(high >> 32),
            static_cast<std::uint16_t>(high >> 16),
            static_cast<std::uint16_t>(high),
            {}};
    for (int i = 0; i < 8; ++i) id.Data4[i] = static_cast<std::uint8_t>(low >> (56 - 8 * i));
    return id;
}

// What LYR_CLASS_ID is given: a text or a constant.
constexpr std::uint64_t IdHigh(const char* text) {
    return IdHigh(ParseId(text));
}
constexpr std::uint64_t IdLow(const char* text) {
    return IdLow(ParseId(text));
}
constexpr bool IsId(const char* text) {
    return IsIdText(text);
}
constexpr bool IsId(const GUID&) {
    return true;
}

}  // namespace detail
}  // namespace v1
}  // namespace lyr
