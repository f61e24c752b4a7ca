#include "platform/diag/trace_sink.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <mutex>

namespace tervane {
namespace {

struct Sink {
    std::mutex lock;
    int fd = -1;
    bool environmentRead = false;
};

Sink& TheSink() {
    static Sink sink;
    return sink;
}

int OpenForAppend(const std::string& path) {
    return ::open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0644);
}

// The environment names a trace file once, unless the host chose first.
void ReadEnvironmentOnce(Sink& sink) {
    if (sink.environmentRead)
        return;
    sink.environmentRead = true;
    const char* path = std::getenv(kTraceVariable);
    if (path != nullptr && *path != '\0')
        sink.fd = OpenForAppend(path);
}

void Replace(Sink& sink, int fd) {
    if (sink.fd >= 0)
        ::close(sink.fd);
    sink.fd = fd;
}

} // namespace

bool AttachTraceFile(const std::string& path) {
    int fd = OpenForAppend(path);
    if (fd < 0)
        return false;
    Sink& sink = TheSink();
    std::lock_guard guard(sink.lock);
    // An explicit choice wins over the environment.
    sink.environmentRead = true;
    Replace(sink, fd);
    return true;
}

void DetachTrace() {
    Sink& sink = TheSink();
    std::lock_guard guard(sink.lock);
    sink.environmentRead = true;
    Replace(sink, -1);
}

bool TraceAttached() {
    Sink& sink = TheSink();
    std::lock_guard guard(sink.lock);
    ReadEnvironmentOnce(sink);
    return sink.fd >= 0;
}

void WriteTrace(std::string_view text) {
    Sink& sink = TheSink();
    std::lock_guard guard(sink.lock);
    ReadEnvironmentOnce(sink);
    if (sink.fd < 0)
        return;
    std::string line(text);
    if (line.empty() || line.back() != '\n')
        line += '\n';
    // A trace that can't be written is lost; tracing never fails the caller.
    [[maybe_unused]] ssize_t written = ::write(sink.fd, line.data(), line.size());
}

} // namespace tervane
