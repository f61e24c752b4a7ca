#pragma once
// GetVersionExA as Windows answers a program without a compatibility
// manifest: Windows 8 (6.2, build 9200) of the NT family.
#include "platform/win32/types.h"

inline constexpr DWORD VER_PLATFORM_WIN32s = 0;
inline constexpr DWORD VER_PLATFORM_WIN32_WINDOWS = 1;
inline constexpr DWORD VER_PLATFORM_WIN32_NT = 2;

struct OSVERSIONINFOA {
    DWORD dwOSVersionInfoSize;
    DWORD dwMajorVersion;
    DWORD dwMinorVersion;
    DWORD dwBuildNumber;
    DWORD dwPlatformId;
    char szCSDVersion[128];
};

struct OSVERSIONINFOEXA {
    DWORD dwOSVersionInfoSize;
    DWORD dwMajorVersion;
    DWORD dwMinorVersion;
    DWORD dwBuildNumber;
    DWORD dwPlatformId;
    char szCSDVersion[128];
    WORD wServicePackMajor;
    WORD wServicePackMinor;
    WORD wSuiteMask;
    BYTE wProductType;
    BYTE wReserved;
};

// Fails with ERROR_INSUFFICIENT_BUFFER unless dwOSVersionInfoSize is the
// size of one of the two structures, as Windows does.
BOOL GetVersionExA(OSVERSIONINFOA* info);
