#include "platform/process/processes.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <poll.h>
#include <sstream>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/update/pending_files.h"

namespace tervane {

namespace {

int PidfdOpen(pid_t id) {
    return static_cast<int>(::syscall(SYS_pidfd_open, id, 0));
}

int PidfdSignal(int fd, int signal) {
    return static_cast<int>(::syscall(SYS_pidfd_send_signal, fd, signal, nullptr, 0));
}

// Reads all of n bytes unless the other end closes first; gives what came.
ssize_t ReadFull(int fd, void* buffer, std::size_t n) {
    std::size_t got = 0;
    while (got < n) {
        const ssize_t r = ::read(fd, static_cast<char*>(buffer) + got, n - got);
        if (r < 0 && errno == EINTR)
            continue;
        if (r <= 0)
            break;
        got += static_cast<std::size_t>(r);
    }
    return static_cast<ssize_t>(got);
}

} // namespace

std::optional<ProcessIdentity> IdentityOf(pid_t id) {
    if (id <= 0)
        return std::nullopt;
    const std::string proc = "/proc/" + std::to_string(id);
    std::ifstream stat(proc + "/stat");
    std::string line;
    if (!std::getline(stat, line))
        return std::nullopt;
    // The name in parentheses may hold blanks and parentheses: count from the last one.
    const std::size_t close = line.rfind(')');
    if (close == std::string::npos)
        return std::nullopt;
    std::istringstream fields(line.substr(close + 2));
    std::string field;
    char state = 0;
    fields >> state;
    if (state == 'Z' || state == 'X')
        return std::nullopt; // ended, only not yet reaped
    // Field 22 of the line is the start time; the state was field 3.
    for (int i = 4; i <= 22 && fields >> field; ++i) {
    }
    ProcessIdentity identity;
    try {
        identity.startTime = std::stoull(field);
    } catch (const std::exception&) {
        return std::nullopt;
    }
    std::error_code error;
    identity.executable = std::filesystem::read_symlink(proc + "/exe", error).string();
    return identity;
}

std::optional<ProcessHandle> ProcessHandle::Open(pid_t id) {
    if (id <= 0)
        return std::nullopt;
    const int fd = PidfdOpen(id);
    if (fd < 0)
        return std::nullopt;
    ProcessHandle handle(fd, id);
    if (!handle.Alive())
        return std::nullopt;
    return handle;
}

ProcessHandle::~ProcessHandle() {
    if (fd_ >= 0)
        ::close(fd_);
}

ProcessHandle::ProcessHandle(ProcessHandle&& other) noexcept : fd_(other.fd_), id_(other.id_) {
    other.fd_ = -1;
}

ProcessHandle& ProcessHandle::operator=(ProcessHandle&& other) noexcept {
    if (this != &other) {
        if (fd_ >= 0)
            ::close(fd_);
        fd_ = other.fd_;
        id_ = other.id_;
        other.fd_ = -1;
    }
    return *this;
}

bool ProcessHandle::Alive() const {
    return fd_ >= 0 && PidfdSignal(fd_, 0) == 0 && IdentityOf(id_).has_value();
}

std::optional<ProcessIdentity> ProcessHandle::Identity() const {
    std::optional<ProcessIdentity> identity = IdentityOf(id_);
    // Read through the number: valid only if the handle's process still
    // holds it, which it does as long as it lives.
    if (!identity || PidfdSignal(fd_, 0) != 0)
        return std::nullopt;
    return identity;
}

bool ProcessHandle::Terminate() const {
    return fd_ >= 0 && PidfdSignal(fd_, SIGKILL) == 0;
}

std::optional<pid_t> StartDetached(const std::string& program,
                                   const std::vector<std::string>& arguments) {
    std::vector<char*> argv;
    for (const std::string& argument : arguments)
        argv.push_back(const_cast<char*>(argument.c_str()));
    argv.push_back(nullptr);

    // The new process reads what this one has written.
    update::FlushAllPendingFiles();
    // Detached: no standard handles of the caller, whose readers would wait
    // for the end of their pipe as long as the new process lives.
    const int nothing = ::open("/dev/null", O_RDWR | O_CLOEXEC);
    if (nothing < 0)
        return std::nullopt;
    // The grandchild writes its number, then, only if exec fails, its error.
    int report[2];
    if (::pipe2(report, O_CLOEXEC) != 0) {
        ::close(nothing);
        return std::nullopt;
    }
    const pid_t child = ::fork();
    if (child < 0) {
        ::close(report[0]);
        ::close(report[1]);
        ::close(nothing);
        return std::nullopt;
    }
    if (child == 0) {
        ::close(report[0]);
        ::setsid();
        const pid_t grandchild = ::fork();
        if (grandchild != 0)
            ::_exit(grandchild < 0 ? 1 : 0);
        for (int fd = 0; fd < 3; ++fd)
            ::dup2(nothing, fd);
        const pid_t self = ::getpid();
        (void)!::write(report[1], &self, sizeof self);
        sigset_t none;
        sigemptyset(&none);
        ::sigprocmask(SIG_SETMASK, &none, nullptr);
        ::execv(program.c_str(), argv.data());
        const int error = errno;
        (void)!::write(report[1], &error, sizeof error);
        ::_exit(127);
    }
    ::close(report[1]);
    ::close(nothing);
    int status = 0;
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    pid_t started = 0;
    int error = 0;
    const bool gotId = ReadFull(report[0], &started, sizeof started) == sizeof started;
    const bool failed = ReadFull(report[0], &error, sizeof error) == sizeof error;
    ::close(report[0]);
    if (!gotId || failed)
        return std::nullopt;
    return started;
}

std::optional<ProgramRun> RunToEnd(const std::string& program,
                                   const std::vector<std::string>& arguments) {
    std::vector<char*> argv;
    for (const std::string& argument : arguments)
        argv.push_back(const_cast<char*>(argument.c_str()));
    argv.push_back(nullptr);

    update::FlushAllPendingFiles();
    int out[2], err[2], report[2];
    if (::pipe2(out, O_CLOEXEC) != 0)
        return std::nullopt;
    if (::pipe2(err, O_CLOEXEC) != 0) {
        ::close(out[0]);
        ::close(out[1]);
        return std::nullopt;
    }
    if (::pipe2(report, O_CLOEXEC) != 0) {
        for (int fd : {out[0], out[1], err[0], err[1]})
            ::close(fd);
        return std::nullopt;
    }
    const pid_t child = ::fork();
    if (child == 0) {
        ::dup2(out[1], STDOUT_FILENO);
        ::dup2(err[1], STDERR_FILENO);
        sigset_t none;
        sigemptyset(&none);
        ::sigprocmask(SIG_SETMASK, &none, nullptr);
        ::execv(program.c_str(), argv.data());
        const int error = errno;
        (void)!::write(report[1], &error, sizeof error);
        ::_exit(127);
    }
    for (int fd : {out[1], err[1], report[1]})
        ::close(fd);
    if (child < 0) {
        for (int fd : {out[0], err[0], report[0]})
            ::close(fd);
        return std::nullopt;
    }
    // Both outputs at once: a child blocked on a full pipe that nobody reads
    // would never end.
    ProgramRun run;
    pollfd ends[2] = {{out[0], POLLIN, 0}, {err[0], POLLIN, 0}};
    std::string* into[2] = {&run.out, &run.err};
    int open = 2;
    while (open > 0) {
        if (::poll(ends, 2, -1) < 0) {
            if (errno == EINTR)
                continue;
            break;
        }
        for (int i = 0; i < 2; ++i) {
            if (ends[i].fd < 0 || ends[i].revents == 0)
                continue;
            char buffer[4096];
            const ssize_t got = ::read(ends[i].fd, buffer, sizeof buffer);
            if (got < 0 && errno == EINTR)
                continue;
            if (got <= 0) {
                ::close(ends[i].fd);
                ends[i].fd = -1;
                --open;
                continue;
            }
            into[i]->append(buffer, static_cast<std::size_t>(got));
        }
    }
    for (const pollfd& end : ends)
        if (end.fd >= 0)
            ::close(end.fd);
    int status = 0;
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    int error = 0;
    const bool failed = ReadFull(report[0], &error, sizeof error) == sizeof error;
    ::close(report[0]);
    if (failed)
        return std::nullopt;
    run.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    return run;
}

} // namespace tervane
