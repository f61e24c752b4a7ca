#include "backward/resource_transaction.h"

#include <cctype>
#include <cstdlib>

#include "frame/diagnostics/event_logging.h"
#include "frame/diagnostics/trace.h"
#include "platform/files/file_calls.h"
#include "platform/locale/code_pages.h"
#include "platform/update/resource_update.h"
#include "platform/win32/last_error.h"

namespace tervane {

namespace {

bool IsNumberName(const std::string& identifier) {
    for (unsigned char c : identifier)
        if (std::isalpha(c) || c == '_' || c >= 0x80)
            return false;
    return true;
}

int Failed(TransactionKind kind, const char* call) {
    Trace(std::string("\n---------------Cannot ") +
          (kind == TransactionKind::Update ? "update" : "delete") + " this resource(" + call +
          ").----------------\n\n");
    return 1;
}

} // namespace

int UpdateOneResource(const std::u16string& path, WORD type, const std::string& identifier,
                      const void* data, DWORD size, WORD language, TransactionKind kind) {
    SetLastError(0);
    const bool wasReadOnly = _waccess(path.c_str(), 2) != 0;
    if (wasReadOnly)
        _wchmod(path.c_str(), _S_IWRITE);

    const std::string narrowPath = Narrow(path);
    HANDLE update = BeginUpdateResourceA(narrowPath.c_str(), FALSE);
    if (CheckLastError("Win32API::BeginUpdateResource"))
        return Failed(kind, "BeginUpdateResource");

    const ResName name = IsNumberName(identifier)
                             ? ResName(static_cast<WORD>(std::atol(identifier.c_str()) & 0xFFFF))
                             : ResName(identifier);
    UpdateResourceA(update, ResName(type), name, language, data, size);
    // A failed update leaves its handle open, as the system does.
    if (CheckLastError("Win32API::UpdateResource"))
        return Failed(kind, "UpdateResource");

    SetLastError(0);
    EndUpdateResourceA(update, FALSE);
    if (CheckLastError("Win32API::EndUpdateResource"))
        return Failed(kind, "EndUpdateResource");

    if (wasReadOnly)
        _wchmod(path.c_str(), _S_IREAD);
    return 0;
}

} // namespace tervane
