#pragma once
// Whole-file access for the platform's own callers. Every call of the platform
// layer that looks at a file's content goes through here, so that a file kept
// open for resource updates is seen with its current content.
#include <cstdint>
#include <string>
#include <vector>

#include "platform/result.h"

namespace tervane::files {

// Fails with ERROR_FILE_NOT_FOUND, ERROR_PATH_NOT_FOUND or ERROR_ACCESS_DENIED
// (a folder, or no permission) as Win32 would. Pending resource updates of
// the file are written out first.
Result<std::vector<std::uint8_t>> ReadFileBytes(const std::string& path);

// The bytes on disk as they are, pending updates or not: only for the
// resource updater itself, which holds those updates.
Result<std::vector<std::uint8_t>> ReadDiskBytes(const std::string& path);

// The Win32 code for an errno from a file call.
DWORD Win32ErrorFromErrno(int error);

} // namespace tervane::files
