#pragma once
// The Win32 scalar types under their Win32 names, so that code written against
// the Win32 calls reads as it would on Windows.
#include <cstdint>

using BYTE = std::uint8_t;
using WORD = std::uint16_t;
using DWORD = std::uint32_t;
using LONG = std::int32_t;
using ULONG = std::uint32_t;
using UINT = unsigned int;
using BOOL = int;
using LANGID = WORD;
using LCID = DWORD;
using ULONGLONG = std::uint64_t;
using LONG_PTR = std::intptr_t;

inline constexpr BOOL TRUE = 1;
inline constexpr BOOL FALSE = 0;

constexpr WORD MAKELANGID(WORD primary, WORD sub) {
    return static_cast<WORD>((sub << 10) | primary);
}
constexpr WORD PRIMARYLANGID(WORD lang) {
    return lang & 0x3FF;
}
constexpr WORD SUBLANGID(WORD lang) {
    return lang >> 10;
}

inline constexpr WORD LANG_NEUTRAL = 0x00;
inline constexpr WORD SUBLANG_NEUTRAL = 0x00;
inline constexpr WORD SUBLANG_DEFAULT = 0x01;
