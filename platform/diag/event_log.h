#pragma once
// The application event log. Linux has none: each event goes to syslog under
// its source's name and is appended to a log file that the user can find
// (EventLogPath), one line per event.
#include <string>

#include "platform/win32/handle.h"
#include "platform/win32/types.h"

inline constexpr WORD EVENTLOG_SUCCESS = 0x0000;
inline constexpr WORD EVENTLOG_ERROR_TYPE = 0x0001;
inline constexpr WORD EVENTLOG_WARNING_TYPE = 0x0002;
inline constexpr WORD EVENTLOG_INFORMATION_TYPE = 0x0004;

// server must be null: only the local log exists.
HANDLE RegisterEventSourceA(const char* server, const char* source);
// Fails with the file's error when the log file can't be written; syslog
// has been given the event by then.
BOOL ReportEventA(HANDLE log, WORD type, WORD category, DWORD eventId, void* userSid,
                  WORD stringCount, DWORD dataSize, const char** strings, void* rawData);
BOOL DeregisterEventSource(HANDLE log);

namespace tervane {

inline constexpr const char* kEventLogVariable = "TERVANE_EVENT_LOG";

// $TERVANE_EVENT_LOG, else $XDG_STATE_HOME/tervane/events.log, else
// ~/.local/state/tervane/events.log; empty when none of them is known.
std::string EventLogPath();

} // namespace tervane
