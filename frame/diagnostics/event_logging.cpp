#include "frame/diagnostics/event_logging.h"

#include "platform/diag/event_log.h"
#include "platform/win32/last_error.h"
#include "platform/win32/resources.h"
#include "platform/win32/system_messages.h"

namespace tervane {

namespace {
constexpr UINT kEventSourceStringId = 100;
constexpr int kSourceBufferSize = 1024;
constexpr DWORD kUserDefaultLanguage = 0x400;
} // namespace

void LogEvent(DWORD type, const std::string& text) {
    if (type > kReportingLevel)
        return;
    char source[kSourceBufferSize] = "";
    LoadStringA(TervaneModuleHandle(), kEventSourceStringId, source, kSourceBufferSize);
    HANDLE log = RegisterEventSourceA(nullptr, source);
    if (log == nullptr)
        return;
    const char* strings[] = {text.c_str()};
    ReportEventA(log, static_cast<WORD>(type), 0, kEventId, nullptr, 1, 0, strings, nullptr);
    DeregisterEventSource(log);
}

int CheckLastError(std::string) {
    DWORD error = GetLastError();
    if (error == 0)
        return 0;
    char* text = nullptr;
    FormatMessageA(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_IGNORE_INSERTS |
                       FORMAT_MESSAGE_FROM_SYSTEM,
                   nullptr, error, kUserDefaultLanguage, &text, 0, nullptr);
    // Logged even without a text, so that the failure leaves a trace.
    LogEvent(EVENTLOG_ERROR_TYPE, text ? text : "");
    LocalFree(text);
    return 1;
}

} // namespace tervane
