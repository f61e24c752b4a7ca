#pragma once
// One resource written into or deleted from a file, in a transaction of its
// own: the procedure behind both the deletion of a source resource and the
// update of a rebuilt one.
#include <string>

#include "platform/win32/types.h"

namespace tervane {

// The words of the trace lines: "update" or "delete".
enum class TransactionKind { Update, Delete };

// Writes data under (type, identifier, language) into the file at path, or
// deletes the resource when data is null and size 0. A read-only file is
// opened for the call and made read-only again. An identifier without a
// letter and without an underscore is a number. 0, or 1 when a Win32 call
// failed: that is traced and logged, not raised, and the file keeps what the
// failed transaction did not write.
int UpdateOneResource(const std::u16string& path, WORD type, const std::string& identifier,
                      const void* data, DWORD size, WORD language, TransactionKind kind);

} // namespace tervane
