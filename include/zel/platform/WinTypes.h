// The fixed-width integer types, handles and helper macros that the class interface uses.
//
// LONG and DWORD are 32 bits on every platform; where an interface signature says `unsigned long` (64 bits on
// Linux) values are cut to 32 bits at the boundary.
#pragma once

#include <cstdint>

using BYTE = std::uint8_t;
using WORD = std::uint16_t;
using DWORD = std::uint32_t;
using LONG = std::int32_t;
using BOOL = int;
using UINT = unsigned int;
using LPCSTR = const char*;
using LPCTSTR = const char*;
using LPSTR = char*;

inline constexpr BOOL TRUE = 1;
inline constexpr BOOL FALSE = 0;

// A colour as 0x00BBGGRR.
using COLORREF = DWORD;

constexpr COLORREF RGB(int red, int green, int blue) {
    return static_cast<COLORREF>((red & 0xFF) | (green & 0xFF) << 8 | (blue & 0xFF) << 16);
}
constexpr BYTE GetRValue(COLORREF color) {
    return static_cast<BYTE>(color & 0xFF);
}
constexpr BYTE GetGValue(COLORREF color) {
    return static_cast<BYTE>(color >> 8 & 0xFF);
}
constexpr BYTE GetBValue(COLORREF color) {
    return static_cast<BYTE>(color >> 16 & 0xFF);
}

// `a * b / c` with a 64-bit product, rounded to the nearest integer, halves away from zero.
// Answers -1 when `c` is 0 or the result is not within -2147483647 .. 2147483647.
constexpr int MulDiv(int a, int b, int c) {
    if (c == 0) return -1;
    std::int64_t product = static_cast<std::int64_t>(a) * b;
    std::int64_t divisor = c;
    if (divisor < 0) {
        product = -product;
        divisor = -divisor;
    }
    const std::int64_t half = divisor / 2;
    const std::int64_t result = (product >= 0 ? product + half : product - half) / divisor;
    return result > INT32_MAX || result <= INT32_MIN ? -1 : static_cast<int>(result);
}
