#pragma once
// Writing a file so that it is never seen half-written: a complete temporary
// file in the same folder, renamed over the target.
#include <optional>
#include <string>
#include <sys/types.h>

#include "platform/byte_reader.h"
#include "platform/result.h"

namespace tervane::files {

// The path with links, "." and ".." resolved; for a file that does not exist
// (yet), its folder resolved. The key under which pending updates are kept.
std::string CanonicalPath(const std::string& path);

// Replaces (or creates) path with bytes, giving it the permission bits mode.
// On any failure the target is untouched and the temporary file removed.
std::optional<Error> ReplaceFileContent(const std::string& path, Bytes bytes, mode_t mode);
// The same with the content of the file from, copied by the kernel where it
// can. The caller writes out from's pending updates first.
std::optional<Error> ReplaceFileWithCopy(const std::string& path, const std::string& from,
                                         mode_t mode);

// The Win32 code for a failed look at path: a missing folder on the way is
// ERROR_PATH_NOT_FOUND, a missing file ERROR_FILE_NOT_FOUND.
DWORD LookupError(const std::string& path, int error);

// The permission bits of an existing file, or of a new one (0666 less umask).
mode_t PermissionsFor(const std::string& path);

} // namespace tervane::files
