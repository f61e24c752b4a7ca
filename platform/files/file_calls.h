#pragma once
// Win32's and the C runtime's file calls, as the system uses them. Each one
// that looks at a file's content or hands the file on writes out the file's
// pending resource updates first; one that replaces or removes a file drops
// them. Paths are UTF-8.
#include <cstdio>

#include "platform/win32/handle.h"
#include "platform/win32/types.h"

inline constexpr DWORD MAX_PATH = 260;
inline constexpr DWORD MOVEFILE_REPLACE_EXISTING = 0x1;
inline constexpr DWORD MOVEFILE_COPY_ALLOWED = 0x2;
inline constexpr DWORD MOVEFILE_WRITE_THROUGH = 0x8;

inline constexpr DWORD FILE_ATTRIBUTE_READONLY = 0x01;
inline constexpr DWORD FILE_ATTRIBUTE_DIRECTORY = 0x10;
inline constexpr DWORD FILE_ATTRIBUTE_ARCHIVE = 0x20;
inline constexpr DWORD FILE_ATTRIBUTE_NORMAL = 0x80;
inline constexpr DWORD INVALID_FILE_ATTRIBUTES = 0xFFFFFFFF;

// The C runtime's permission flags for _wchmod.
inline constexpr int _S_IREAD = 0x100;
inline constexpr int _S_IWRITE = 0x80;

struct FILETIME {
    DWORD dwLowDateTime = 0;
    DWORD dwHighDateTime = 0;
};

struct WIN32_FIND_DATAA {
    DWORD dwFileAttributes = 0;
    FILETIME ftCreationTime;
    FILETIME ftLastAccessTime;
    FILETIME ftLastWriteTime;
    DWORD nFileSizeHigh = 0;
    DWORD nFileSizeLow = 0;
    DWORD dwReserved0 = 0;
    DWORD dwReserved1 = 0;
    char cFileName[MAX_PATH] = {};
    char cAlternateFileName[14] = {};
};

// Copies content and permission bits. A read-only target is ERROR_ACCESS_DENIED;
// with failIfExists an existing one is ERROR_FILE_EXISTS.
BOOL CopyFileA(const char* from, const char* to, BOOL failIfExists);
// Without MOVEFILE_REPLACE_EXISTING an existing target is ERROR_ALREADY_EXISTS;
// across file systems only with MOVEFILE_COPY_ALLOWED.
BOOL MoveFileExA(const char* from, const char* to, DWORD flags);
// A read-only file is not deleted (ERROR_ACCESS_DENIED), as on Windows.
BOOL DeleteFileA(const char* path);
// The last path component may hold the wildcards * and ?; the first match is
// returned. Fails with INVALID_HANDLE_VALUE and ERROR_FILE_NOT_FOUND.
HANDLE FindFirstFileA(const char* pattern, WIN32_FIND_DATAA* data);
BOOL FindNextFileA(HANDLE find, WIN32_FIND_DATAA* data);
BOOL FindClose(HANDLE find);
DWORD GetFileAttributesA(const char* path);

// 0 exists, 2 write, 4 read, 6 both: 0 when allowed, else -1 with errno
// EACCES or ENOENT. Write means the read-only attribute is not set.
int _waccess(const char16_t* path, int mode);
// _S_IWRITE clears the read-only attribute, _S_IREAD alone sets it.
int _wchmod(const char16_t* path, int mode);

// The C runtime's fopen, for the callers that measure or read a file
// themselves: its pending resource updates are written out first.
FILE* _wfopen(const char16_t* path, const char16_t* mode);
