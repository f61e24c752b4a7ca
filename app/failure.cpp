#include "app/failure.h"

#include <cstdio>

#include "platform/com/com_ptr.h"
#include "platform/com/error_info.h"
#include "platform/diag/failure_place.h"
#include "platform/locale/code_pages.h"
#include "platform/win32/system_messages.h"

namespace tervane::app {

void ReportFailure(std::string_view command, const CommandFailure& failure) {
    std::string line = "tervane";
    if (!command.empty()) {
        line += ' ';
        line += command;
    }
    line += ": ";
    if (!failure.Subject().empty()) {
        line += failure.Subject();
        line += ": ";
    }
    line += failure.what();
    line += '\n';
    if (!FailurePlace().empty()) {
        line += FailurePlace();
        line += '\n';
    }
    if (!failure.Hint().empty()) {
        line += failure.Hint();
        line += '\n';
    }
    std::fputs(line.c_str(), stderr);
}

std::string SystemText(unsigned long code, std::string_view subject) {
    std::string text =
        SystemMessageText(static_cast<DWORD>(code)).value_or("Error " + std::to_string(code) + ".");
    while (!text.empty() && (text.back() == '\n' || text.back() == '\r'))
        text.pop_back();
    if (auto at = text.find("%1"); at != std::string::npos)
        text.replace(at, 2, subject);
    return text;
}

std::string ComponentErrorText(std::int32_t hr, const char* what) {
    ComPtr<IErrorInfo> info;
    if (GetErrorInfo(0, info.Receive()) == S_OK && info) {
        BSTR description = nullptr;
        info->GetDescription(&description);
        Bstr owned = Bstr::Attach(description);
        if (owned.length())
            return Narrow(owned.view(), CP_UTF8);
    }
    char text[64];
    std::snprintf(text, sizeof text, "the %s failed (0x%08X)", what, static_cast<unsigned>(hr));
    return text;
}

} // namespace tervane::app
