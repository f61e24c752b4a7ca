#pragma once
// Win32's code page conversions. The process's conversion code page is UTF-8,
// so CP_ACP, CP_OEMCP and CP_THREAD_ACP all mean 65001 here.
#include <string>
#include <string_view>

#include "platform/win32/types.h"

inline constexpr UINT CP_ACP = 0;
inline constexpr UINT CP_OEMCP = 1;
inline constexpr UINT CP_MACCP = 2;
inline constexpr UINT CP_THREAD_ACP = 3;
inline constexpr UINT CP_SYMBOL = 42;
inline constexpr UINT CP_UTF7 = 65000;
inline constexpr UINT CP_UTF8 = 65001;

inline constexpr DWORD MB_PRECOMPOSED = 0x00000001;
inline constexpr DWORD MB_COMPOSITE = 0x00000002;
inline constexpr DWORD MB_USEGLYPHCHARS = 0x00000004;
inline constexpr DWORD MB_ERR_INVALID_CHARS = 0x00000008;

inline constexpr DWORD WC_COMPOSITECHECK = 0x00000200;
inline constexpr DWORD WC_DISCARDNS = 0x00000010;
inline constexpr DWORD WC_SEPCHARS = 0x00000020;
inline constexpr DWORD WC_DEFAULTCHAR = 0x00000040;
inline constexpr DWORD WC_ERR_INVALID_CHARS = 0x00000080;
inline constexpr DWORD WC_NO_BEST_FIT_CHARS = 0x00000400;

UINT GetACP();
UINT GetOEMCP();

// Results count code units (char16_t for wide, bytes for narrow); 0 means
// failure with the reason in GetLastError().
int MultiByteToWideChar(UINT codePage, DWORD flags, const char* src, int srcLen, char16_t* dst,
                        int dstLen);
int WideCharToMultiByte(UINT codePage, DWORD flags, const char16_t* src, int srcLen, char* dst,
                        int dstLen, const char* defaultChar, BOOL* usedDefaultChar);

BOOL IsDBCSLeadByte(BYTE testChar);
BOOL IsDBCSLeadByteEx(UINT codePage, BYTE testChar);
BOOL IsValidCodePage(UINT codePage);

namespace tervane {

// Whole-string conversions for our own code; invalid input is replaced, never
// refused. An unsupported code page gives an empty string.
std::u16string Widen(std::string_view text, UINT codePage = CP_ACP);
std::string Narrow(std::u16string_view text, UINT codePage = CP_ACP);

} // namespace tervane
