#include "platform/diag/event_log.h"

#include <fcntl.h>
#include <syslog.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <memory>
#include <mutex>
#include <set>

#include "platform/win32/last_error.h"

namespace tervane {
namespace {

struct EventSource {
    std::string name;
};

std::mutex g_sourcesLock;
std::set<EventSource*> g_sources;

bool IsSource(HANDLE log) {
    std::lock_guard guard(g_sourcesLock);
    return g_sources.count(static_cast<EventSource*>(log)) != 0;
}

std::string NonEmptyVariable(const char* name) {
    const char* value = std::getenv(name);
    return value ? value : "";
}

const char* TypeWord(WORD type) {
    switch (type) {
    case EVENTLOG_ERROR_TYPE:
        return "error";
    case EVENTLOG_WARNING_TYPE:
        return "warning";
    case EVENTLOG_INFORMATION_TYPE:
        return "information";
    default:
        return "success";
    }
}

int Priority(WORD type) {
    switch (type) {
    case EVENTLOG_ERROR_TYPE:
        return LOG_ERR;
    case EVENTLOG_WARNING_TYPE:
        return LOG_WARNING;
    default:
        return LOG_INFO;
    }
}

// System texts end in CR LF; a line of the log must not, and further lines of
// one event are indented so that each event starts at the margin.
std::string OneEntry(const std::string& text) {
    std::string out;
    std::size_t end = text.find_last_not_of("\r\n");
    for (std::size_t i = 0; end != std::string::npos && i <= end; ++i) {
        if (text[i] == '\r')
            continue;
        out += text[i];
        if (text[i] == '\n')
            out += '\t';
    }
    return out;
}

DWORD Win32ErrorOf(int error) {
    switch (error) {
    case ENOENT:
        return ERROR_PATH_NOT_FOUND;
    case EACCES:
    case EPERM:
    case EROFS:
        return ERROR_ACCESS_DENIED;
    case ENOSPC:
        return ERROR_DISK_FULL;
    default:
        return ERROR_WRITE_FAULT;
    }
}

// One write of O_APPEND per event, so that processes don't interleave.
bool AppendLine(const std::string& path, const std::string& line) {
    std::error_code ignored;
    std::filesystem::create_directories(std::filesystem::path(path).parent_path(), ignored);
    int fd = ::open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0600);
    if (fd < 0) {
        SetLastError(Win32ErrorOf(errno));
        return false;
    }
    ssize_t written = ::write(fd, line.data(), line.size());
    int error = errno;
    ::close(fd);
    if (written != static_cast<ssize_t>(line.size())) {
        SetLastError(written < 0 ? Win32ErrorOf(error) : ERROR_WRITE_FAULT);
        return false;
    }
    return true;
}

} // namespace

std::string EventLogPath() {
    std::string path = NonEmptyVariable(kEventLogVariable);
    if (!path.empty())
        return path;
    // The XDG rules ignore a relative base.
    std::string state = NonEmptyVariable("XDG_STATE_HOME");
    if (!state.empty() && state.front() == '/')
        return state + "/tervane/events.log";
    std::string home = NonEmptyVariable("HOME");
    if (!home.empty())
        return home + "/.local/state/tervane/events.log";
    return {};
}

} // namespace tervane

HANDLE RegisterEventSourceA(const char* server, const char* source) {
    if (server != nullptr || source == nullptr) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    auto entry = std::make_unique<tervane::EventSource>(tervane::EventSource{source});
    std::lock_guard guard(tervane::g_sourcesLock);
    tervane::g_sources.insert(entry.get());
    return entry.release();
}

BOOL DeregisterEventSource(HANDLE log) {
    std::unique_ptr<tervane::EventSource> entry;
    {
        std::lock_guard guard(tervane::g_sourcesLock);
        auto it = tervane::g_sources.find(static_cast<tervane::EventSource*>(log));
        if (it == tervane::g_sources.end()) {
            SetLastError(ERROR_INVALID_HANDLE);
            return FALSE;
        }
        entry.reset(*it);
        tervane::g_sources.erase(it);
    }
    return TRUE;
}

BOOL ReportEventA(HANDLE log, WORD type, WORD category, DWORD eventId, void*, WORD stringCount,
                  DWORD, const char** strings, void*) {
    if (!tervane::IsSource(log)) {
        SetLastError(ERROR_INVALID_HANDLE);
        return FALSE;
    }
    if (stringCount != 0 && strings == nullptr) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    const std::string& source = static_cast<tervane::EventSource*>(log)->name;
    std::string text;
    for (WORD i = 0; i < stringCount; ++i) {
        if (i != 0)
            text += ' ';
        text += strings[i] ? strings[i] : "";
    }
    std::string entry = tervane::OneEntry(text);

    openlog(source.c_str(), LOG_PID, LOG_USER);
    syslog(tervane::Priority(type), "%s", entry.c_str());
    closelog();

    std::string path = tervane::EventLogPath();
    if (path.empty()) {
        SetLastError(ERROR_PATH_NOT_FOUND);
        return FALSE;
    }
    char stamp[32] = "";
    std::time_t now = std::time(nullptr);
    std::tm utc{};
    if (gmtime_r(&now, &utc))
        std::strftime(stamp, sizeof stamp, "%Y-%m-%dT%H:%M:%SZ", &utc);
    char head[160];
    std::snprintf(head, sizeof head, "%s %s[%ld] %s 0x%08X category %u: ", stamp, source.c_str(),
                  static_cast<long>(::getpid()), tervane::TypeWord(type),
                  static_cast<unsigned>(eventId), static_cast<unsigned>(category));
    return tervane::AppendLine(path, head + entry + "\n") ? TRUE : FALSE;
}
