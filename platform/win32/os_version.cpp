#include "platform/win32/os_version.h"

#include <cstring>

#include "platform/win32/last_error.h"

BOOL GetVersionExA(OSVERSIONINFOA* info) {
    if (!info) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    DWORD size = info->dwOSVersionInfoSize;
    if (size != sizeof(OSVERSIONINFOA) && size != sizeof(OSVERSIONINFOEXA)) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return FALSE;
    }
    info->dwMajorVersion = 6;
    info->dwMinorVersion = 2;
    info->dwBuildNumber = 9200;
    info->dwPlatformId = VER_PLATFORM_WIN32_NT;
    std::memset(info->szCSDVersion, 0, sizeof info->szCSDVersion);
    if (size == sizeof(OSVERSIONINFOEXA)) {
        auto* ex = reinterpret_cast<OSVERSIONINFOEXA*>(info);
        ex->wServicePackMajor = 0;
        ex->wServicePackMinor = 0;
        ex->wSuiteMask = 0x100; // VER_SUITE_SINGLEUSERTS, as a desktop reports
        ex->wProductType = 1;   // VER_NT_WORKSTATION
        ex->wReserved = 0;
    }
    return TRUE;
}
