#pragma once
// Win32's resource update calls. A transaction changes the file's resources
// as the process sees them at once; the file on disk is rewritten when a
// later platform call looks at it, or at the end of the process (see
// pending_files.h), so that thousands of transactions on one file cost one
// rewrite.
#include "platform/win32/handle.h"
#include "platform/win32/res_name.h"
#include "platform/win32/types.h"

// Fails with ERROR_FILE_NOT_FOUND, ERROR_ACCESS_DENIED (read-only or a
// folder), ERROR_FILE_INVALID (empty), ERROR_BAD_EXE_FORMAT (not a PE image,
// or, unless they are to be dropped, resources that cannot be read),
// ERROR_INVALID_PARAMETER (null path).
HANDLE BeginUpdateResourceA(const char* path, BOOL deleteExistingResources);

// Adds or replaces one resource; null data with size 0 deletes it (a resource
// that is not there is no error). Names are upper-cased; "#123" is 123.
BOOL UpdateResourceA(HANDLE update, const ResName& type, const ResName& name, WORD language,
                     const void* data, DWORD size);

// Commits the transaction, or with discard drops it. The handle is closed
// either way. Fails when the image has no room for the result, e.g.
// ERROR_INVALID_DATA when a new section header does not fit the headers.
BOOL EndUpdateResourceA(HANDLE update, BOOL discard);
