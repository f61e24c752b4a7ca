#pragma once
// Win32's registry, for the calling user and the classes, kept in files of
// the user's: one file a root, under $TERVANE_REGISTRY_DIR, else
// $XDG_CONFIG_HOME/tervane, else ~/.config/tervane. Every change rereads the
// file and writes it whole, through a temporary file and a rename, under a
// lock, so that two processes never leave it half written.
#include <string>

#include "platform/win32/last_error.h"
#include "platform/win32/types.h"

struct RegistryKey;
using HKEY = RegistryKey*;
using REGSAM = DWORD;

extern HKEY const HKEY_CLASSES_ROOT;
extern HKEY const HKEY_CURRENT_USER;

inline constexpr DWORD REG_NONE = 0;
inline constexpr DWORD REG_SZ = 1;
inline constexpr DWORD REG_BINARY = 3;
inline constexpr DWORD REG_DWORD = 4;
inline constexpr DWORD REG_QWORD = 11;
inline constexpr REGSAM KEY_QUERY_VALUE = 0x0001;
inline constexpr REGSAM KEY_SET_VALUE = 0x0002;
inline constexpr REGSAM KEY_ALL_ACCESS = 0xF003F;
inline constexpr DWORD REG_CREATED_NEW_KEY = 1;
inline constexpr DWORD REG_OPENED_EXISTING_KEY = 2;
inline constexpr LONG ERROR_MORE_DATA = 234;
inline constexpr LONG ERROR_NO_MORE_ITEMS = 259;

// The results are Win32's error codes: ERROR_SUCCESS, ERROR_FILE_NOT_FOUND for
// a missing key or value, ERROR_MORE_DATA where the buffer is too small (size
// then holds what is needed), ERROR_INVALID_HANDLE, ERROR_ACCESS_DENIED when
// the store can't be written. Names are compared without case, as Win32 does.
LONG RegOpenKeyExA(HKEY key, const char* subKey, DWORD options, REGSAM access, HKEY* result);
LONG RegCreateKeyExA(HKEY key, const char* subKey, DWORD reserved, const char* keyClass,
                     DWORD options, REGSAM access, const void* security, HKEY* result,
                     DWORD* disposition);
LONG RegQueryValueExA(HKEY key, const char* name, DWORD* reserved, DWORD* type, BYTE* data,
                      DWORD* size);
LONG RegSetValueExA(HKEY key, const char* name, DWORD reserved, DWORD type, const BYTE* data,
                    DWORD size);
LONG RegCloseKey(HKEY key);
// A key without subkeys, or (Tree) a key with everything below it.
LONG RegDeleteKeyA(HKEY key, const char* subKey);
LONG RegDeleteTreeA(HKEY key, const char* subKey);
LONG RegDeleteValueA(HKEY key, const char* name);
// ERROR_NO_MORE_ITEMS past the last subkey or value; names come back in lower case.
LONG RegEnumKeyExA(HKEY key, DWORD index, char* name, DWORD* size, DWORD* reserved, char* keyClass,
                   DWORD* classSize, void* lastWrite);
LONG RegEnumValueA(HKEY key, DWORD index, char* name, DWORD* size, DWORD* reserved, DWORD* type,
                   BYTE* data, DWORD* dataSize);

namespace tervane {

// The folder of the store, as the environment gives it now.
std::string RegistryFolder();

} // namespace tervane
