#pragma once
// Processes as Win32 has them for a program that starts another and ends it
// later: a handle that keeps naming the same process however its number is
// reused (a pidfd), the program and start time that tell what the process
// is, and a start detached from the caller, which is never left a zombie.
#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace tervane {

struct ProcessIdentity {
    std::string executable;           // the program's path, links resolved
    unsigned long long startTime = 0; // clock ticks after boot
};

class ProcessHandle {
public:
    // None when no process of that number exists, or it has ended.
    static std::optional<ProcessHandle> Open(pid_t id);
    ~ProcessHandle();
    ProcessHandle(ProcessHandle&& other) noexcept;
    ProcessHandle& operator=(ProcessHandle&& other) noexcept;

    pid_t Id() const { return id_; }
    // What the process is; none once it has ended, so that what it gives
    // belongs to the very process of the handle.
    std::optional<ProcessIdentity> Identity() const;
    bool Alive() const;
    // Ends the process at once; false if it had already ended.
    bool Terminate() const;

private:
    ProcessHandle(int fd, pid_t id) : fd_(fd), id_(id) {}
    int fd_ = -1;
    pid_t id_ = 0;
};

// Starts program with the arguments (the first is the program's name), in a
// session of its own, its parent the system's: the caller neither waits for
// it nor is left with a zombie. Gives its number, or none when it could not
// be started (the program missing or not executable).
std::optional<pid_t> StartDetached(const std::string& program,
                                   const std::vector<std::string>& arguments);

// What a program that ran to its end left: its exit status (128 + the signal
// that ended it) and what it wrote to standard output and error.
struct ProgramRun {
    int status = 0;
    std::string out, err;
};

// Runs program with the arguments (the first is the program's name) and
// waits for its end, reading both of its outputs as they come. None when it
// could not be started.
std::optional<ProgramRun> RunToEnd(const std::string& program,
                                   const std::vector<std::string>& arguments);

// The program and start time of a process by number, from /proc.
std::optional<ProcessIdentity> IdentityOf(pid_t id);

} // namespace tervane
