#pragma once
// The system's English message texts for the Win32 codes and HRESULTs that
// this system can meet, and FormatMessageA over them.
#include <optional>
#include <string>

#include "platform/win32/types.h"

inline constexpr DWORD FORMAT_MESSAGE_ALLOCATE_BUFFER = 0x00000100;
inline constexpr DWORD FORMAT_MESSAGE_IGNORE_INSERTS = 0x00000200;
inline constexpr DWORD FORMAT_MESSAGE_FROM_STRING = 0x00000400;
inline constexpr DWORD FORMAT_MESSAGE_FROM_HMODULE = 0x00000800;
inline constexpr DWORD FORMAT_MESSAGE_FROM_SYSTEM = 0x00001000;
inline constexpr DWORD FORMAT_MESSAGE_MAX_WIDTH_MASK = 0x000000FF;

// The text exactly as FormatMessageA gives it, CR LF at the end included.
std::optional<std::string> SystemMessageText(DWORD code);

// Only FORMAT_MESSAGE_FROM_SYSTEM is served. With ALLOCATE_BUFFER, buffer is
// taken as a char** that receives a block to be freed with LocalFree; without
// it, the text is copied into buffer of size chars. Returns the length, or 0
// with the last error set (ERROR_MR_MID_NOT_FOUND for an unknown code).
DWORD FormatMessageA(DWORD flags, const void* source, DWORD messageId, DWORD languageId,
                     void* buffer, DWORD size, void* arguments);
void* LocalFree(void* block);

inline constexpr DWORD ERROR_MR_MID_NOT_FOUND = 317;
