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

bool IsNumberText(const std::string& identifier) {
    for (unsigned char c : identifier)
        if (std::isalpha(c) || c == '_')
            return false;
    return true;
}

} // namespace

int UpdateResourceTransaction(const std::u16string& path, WORD type, const std::string& identifier,
                              const void* data, DWORD size, WORD language,
                              const TransactionFailureLines& lines) {
    SetLastError(0);
    const bool wasReadOnly = _waccess(path.c_str(), 2) != 0;
    if (wasReadOnly)
        _wchmod(path.c_str(), _S_IWRITE);
    const std::string narrowPath = Narrow(path);
    HANDLE update = BeginUpdateResourceA(narrowPath.c_str(), FALSE);
    if (CheckLastError("Win32API::BeginUpdateResource")) {
        Trace(lines.begin);
        return 1;
    }
    const ResName name = IsNumberText(identifier)
                             ? ResName(static_cast<WORD>(std::atol(identifier.c_str()) & 0xFFFF))
                             : ResName(identifier);
    UpdateResourceA(update, ResName(type), name, language, data, size);
    // The handle is abandoned here, as the system does: it ends with the process.
    if (CheckLastError("Win32API::UpdateResource")) {
        Trace(lines.update);
        return 1;
    }
    SetLastError(0);
    EndUpdateResourceA(update, FALSE);
    if (CheckLastError("Win32API::EndUpdateResource")) {
        Trace(lines.end);
        return 1;
    }
    if (wasReadOnly)
        _wchmod(path.c_str(), _S_IREAD);
    return 0;
}

} // namespace tervane
