#pragma once

#include <cstdint>
#include <cstring>

/// The 128-bit name of an interface or a class. Two are equal when all 16 bytes are.
struct GUID {
    std::uint32_t Data1;
    std::uint16_t Data2;
    std::uint16_t Data3;
    std::uint8_t Data4[8];
};

static_assert(sizeof(GUID) == 16 && alignof(GUID) == 4, "a GUID is 16 bytes without padding");

using IID = GUID;
using CLSID = GUID;

inline bool operator==(const GUID& a, const GUID& b) noexcept {
    return std::memcmp(&a, &b, sizeof(GUID)) == 0;
}

inline bool operator!=(const GUID& a, const GUID& b) noexcept {
    return !(a == b);
}
