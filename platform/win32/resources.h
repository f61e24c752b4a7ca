#pragma once
// Win32's reading of resources from a module loaded as data. A module is
// either a PE file on disk (its resource directory) or this module itself,
// whose resources are compiled in (see module_resources.h).
#include <string>

#include "platform/win32/res_name.h"
#include "platform/win32/types.h"

struct ModuleImage;
struct ResourceInfo;
struct LoadedResource;
using HMODULE = ModuleImage*;
using HINSTANCE = HMODULE;
using HRSRC = const ResourceInfo*;
using HGLOBAL = const LoadedResource*;

inline constexpr DWORD DONT_RESOLVE_DLL_REFERENCES = 0x00000001;
inline constexpr DWORD LOAD_LIBRARY_AS_DATAFILE = 0x00000002;
inline constexpr DWORD LOAD_LIBRARY_AS_IMAGE_RESOURCE = 0x00000020;
inline constexpr DWORD LOAD_LIBRARY_AS_DATAFILE_EXCLUSIVE = 0x00000040;

// The handle of this module, whose own resources are served through the same
// calls. A null module stands for it too, as null stands for the process's
// own image on Windows.
HMODULE TervaneModuleHandle();

// Only loading as data is supported: without one of the data-file flags the
// call fails with ERROR_INVALID_PARAMETER, since nothing of a file may run.
HMODULE LoadLibraryExA(const char* path, void* reserved, DWORD flags);
HMODULE LoadLibraryExW(const char16_t* path, void* reserved, DWORD flags);
BOOL FreeLibrary(HMODULE module);

using ENUMRESTYPEPROCA = BOOL (*)(HMODULE module, const ResName& type, LONG_PTR param);
using ENUMRESNAMEPROCA = BOOL (*)(HMODULE module, const ResName& type, const ResName& name,
                                  LONG_PTR param);
using ENUMRESLANGPROCA = BOOL (*)(HMODULE module, const ResName& type, const ResName& name,
                                  WORD language, LONG_PTR param);

BOOL EnumResourceTypesA(HMODULE module, ENUMRESTYPEPROCA proc, LONG_PTR param);
BOOL EnumResourceNamesA(HMODULE module, const ResName& type, ENUMRESNAMEPROCA proc, LONG_PTR param);
BOOL EnumResourceLanguagesA(HMODULE module, const ResName& type, const ResName& name,
                            ENUMRESLANGPROCA proc, LONG_PTR param);

// Names are upper-cased before the search and "#123" means 123. A language
// falls back to its primary language with a neutral sublanguage, then to
// neutral. A language with a neutral primary (FindResourceA asks for
// neutral) goes on to English (United States), the user's language here,
// then to English, then to the first language stored.
HRSRC FindResourceA(HMODULE module, const ResName& name, const ResName& type);
HRSRC FindResourceExA(HMODULE module, const ResName& type, const ResName& name, WORD language);
HGLOBAL LoadResource(HMODULE module, HRSRC resource);
const void* LockResource(HGLOBAL loaded);
DWORD SizeofResource(HMODULE module, HRSRC resource);
BOOL FreeResource(HGLOBAL loaded);

// String id of block id / 16 + 1 of RT_STRING, found as FindResourceA finds
// it, in the process's code page (UTF-8), cut to size - 1 bytes on a
// character boundary and terminated. Returns the bytes copied, 0 for a
// missing string.
int LoadStringA(HINSTANCE instance, UINT id, char* buffer, int size);
