#pragma once
// GetLocaleInfoA for the two code page values the system asks about.
#include "platform/win32/types.h"

using LCTYPE = DWORD;

inline constexpr LCTYPE LOCALE_IDEFAULTCODEPAGE = 0x0000000B; // the OEM code page
inline constexpr LCTYPE LOCALE_IDEFAULTANSICODEPAGE = 0x00001004;
inline constexpr LCTYPE LOCALE_NOUSEROVERRIDE = 0x80000000;

inline constexpr LCID LOCALE_INVARIANT = 0x007F;
inline constexpr LCID LOCALE_USER_DEFAULT = 0x0400;
inline constexpr LCID LOCALE_SYSTEM_DEFAULT = 0x0800;

constexpr LCID MAKELCID(WORD lang, WORD sort) {
    return (static_cast<DWORD>(sort) << 16) | lang;
}
constexpr WORD LANGIDFROMLCID(LCID lcid) {
    return static_cast<WORD>(lcid & 0xFFFF);
}

// The locale of this process as Windows would report it: en-US.
LCID GetUserDefaultLCID();
LCID GetSystemDefaultLCID();
LCID GetThreadLocale();

// Writes the value as decimal text with its NUL and returns the count of
// chars written; 0 on failure (unknown locale or type, buffer too small).
int GetLocaleInfoA(LCID locale, LCTYPE type, char* buffer, int size);
