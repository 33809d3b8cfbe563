#include "LYRSysTSConvertStringToGUID.h"

#include <array>
#include <cstring>

namespace {

/// The value of each character as a hexadecimal digit; 0 for one that is none.
constexpr std::array<std::uint8_t, 256> kHex = [] {
    std::array<std::uint8_t, 256> hex{};
    for (std::uint8_t digit = 0; digit < 10; ++digit) hex['0' + digit] = digit;
    for (std::uint8_t digit = 0; digit < 6; ++digit) {
        hex['A' + digit] = hex['a' + digit] = static_cast<std::uint8_t>(10 + digit);
    }
    return hex;
}();

template <typename Number>
Number ReadHex(const char* digits) {
    std::uint32_t number = 0;
    for (std::size_t i = 0; i < 2 * sizeof(Number); ++i) {
        number = number << 4 | kHex[static_cast<unsigned char>(digits[i])];
    }
    return static_cast<Number>(number);
}

}  // namespace

int LYRSysTSConvertStringToGUID(const char* text, GUID& guid) {
    constexpr std::size_t kLength = 38;
    if (text == nullptr || std::strlen(text) != kLength) return 1;
    if (text[0] != '{' || text[kLength - 1] != '}') return 1;

    guid.Data1 = ReadHex<std::uint32_t>(text + 1);
    guid.Data2 = ReadHex<std::uint16_t>(text + 10);
    guid.Data3 = ReadHex<std::uint16_t>(text + 15);
    constexpr int kByteIndex[8] = {20, 22, 25, 27, 29, 31, 33, 35};
    for (int i = 0; i < 8; ++i) guid.Data4[i] = ReadHex<std::uint8_t>(text + kByteIndex[i]);
    return 0;
}
