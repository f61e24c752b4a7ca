#pragma once
// Failures of Win32 calls, in the system's words, to the application event log.
#include <string>

#include "platform/win32/types.h"

namespace tervane {

// Events of a type above this level are not written.
inline constexpr DWORD kReportingLevel = 4;
// The event identifier of every event the system writes.
inline constexpr DWORD kEventId = 0xC0000004;

// Opens the event source named by string 100 of the module, writes one event
// and closes the source. Failures lose the event and nothing else.
void LogEvent(DWORD type, const std::string& text);

// The test after a Win32 call, whose caller cleared the last error before it:
// 1 if the thread's last error is set, with the system's text for it logged
// as an error event; else 0. The context names the caller and is not logged.
int CheckLastError(std::string context);

} // namespace tervane
