#include "platform/files/file_replace.h"

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/files/file_bytes.h"

namespace tervane::files {

namespace {

std::pair<std::string, std::string> SplitPath(const std::string& path) {
    auto slash = path.find_last_of('/');
    if (slash == std::string::npos)
        return {".", path};
    return {slash == 0 ? "/" : path.substr(0, slash), path.substr(slash + 1)};
}

std::optional<std::string> RealPath(const std::string& path) {
    char* resolved = ::realpath(path.c_str(), nullptr);
    if (!resolved)
        return std::nullopt;
    std::string out(resolved);
    std::free(resolved);
    return out;
}

} // namespace

std::string CanonicalPath(const std::string& path) {
    if (auto real = RealPath(path))
        return *real;
    auto [folder, name] = SplitPath(path);
    if (auto real = RealPath(folder))
        return (*real == "/" ? "" : *real) + "/" + name;
    return path;
}

DWORD LookupError(const std::string& path, int error) {
    if (error == ENOENT) {
        struct stat info {};
        if (::stat(SplitPath(path).first.c_str(), &info) != 0 || !S_ISDIR(info.st_mode))
            return 3; // ERROR_PATH_NOT_FOUND
    }
    return Win32ErrorFromErrno(error);
}

mode_t PermissionsFor(const std::string& path) {
    struct stat info {};
    if (::stat(path.c_str(), &info) == 0)
        return info.st_mode & 07777;
    mode_t mask = ::umask(0);
    ::umask(mask);
    return 0666 & ~mask;
}

namespace {

// Writes the content through fill (which returns 0 or an errno) into a
// temporary file beside path, then renames it over path; with sync, once
// the content is on the disk.
template <typename Fill>
std::optional<Error> ReplaceThrough(const std::string& path, mode_t mode, bool sync,
                                    const Fill& fill) {
    auto [folder, name] = SplitPath(path);
    std::string temporary = folder + "/." + name + ".tervane-XXXXXX";
    int fd = ::mkstemp(temporary.data());
    if (fd < 0)
        return Error{Win32ErrorFromErrno(errno), path};
    auto fail = [&](int error) {
        ::close(fd);
        ::unlink(temporary.c_str());
        return Error{Win32ErrorFromErrno(error), path};
    };
    if (int error = fill(fd))
        return fail(error);
    // Keep the owner where we may (as root); elsewhere the new file is ours,
    // as on any rewrite.
    struct stat old {};
    if (::stat(path.c_str(), &old) == 0 && ::fchown(fd, old.st_uid, old.st_gid) != 0)
        errno = 0;
    // The rename below is what makes the new content visible; it must not
    // become visible before the content itself is on the disk.
    if (::fchmod(fd, mode) != 0 || (sync && ::fsync(fd) != 0))
        return fail(errno);
    if (::close(fd) != 0) {
        int error = errno;
        ::unlink(temporary.c_str());
        return Error{Win32ErrorFromErrno(error), path};
    }
    if (::rename(temporary.c_str(), path.c_str()) != 0) {
        int error = errno;
        ::unlink(temporary.c_str());
        return Error{Win32ErrorFromErrno(error), path};
    }
    return std::nullopt;
}

int WriteAll(int fd, const std::uint8_t* bytes, std::size_t size) {
    std::size_t written = 0;
    while (written < size) {
        ssize_t got = ::write(fd, bytes + written, size - written);
        if (got < 0) {
            if (errno == EINTR)
                continue;
            return errno;
        }
        written += static_cast<std::size_t>(got);
    }
    return 0;
}

// The kernel copies where it can, without the bytes passing through this
// process; where it cannot (another file system on an old kernel), they do.
int CopyAll(int from, int to) {
    bool started = false;
    for (;;) {
        ssize_t got = ::copy_file_range(from, nullptr, to, nullptr, 1 << 30, 0);
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0 && !started &&
            (errno == EXDEV || errno == EINVAL || errno == ENOSYS || errno == EOPNOTSUPP))
            break;
        if (got < 0)
            return errno;
        if (got == 0)
            return 0;
        started = true;
    }
    std::uint8_t buffer[1 << 16];
    for (;;) {
        ssize_t got = ::read(from, buffer, sizeof buffer);
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0)
            return errno;
        if (got == 0)
            return 0;
        if (int error = WriteAll(to, buffer, static_cast<std::size_t>(got)))
            return error;
    }
}

} // namespace

std::optional<Error> ReplaceFileContent(const std::string& path, Bytes bytes, mode_t mode) {
    return ReplaceThrough(path, mode, true,
                          [&](int fd) { return WriteAll(fd, bytes.data(), bytes.size()); });
}

std::optional<Error> ReplaceFileWithCopy(const std::string& path, const std::string& from,
                                         mode_t mode) {
    int source = ::open(from.c_str(), O_RDONLY | O_CLOEXEC);
    if (source < 0)
        return Error{Win32ErrorFromErrno(errno), from};
    // A copy under a new name replaces nothing that a crash could cost, and
    // Win32's CopyFile does not flush either; a copy over a file does.
    struct stat target {};
    const bool replaces = ::stat(path.c_str(), &target) == 0;
    auto error = ReplaceThrough(path, mode, replaces, [&](int fd) { return CopyAll(source, fd); });
    ::close(source);
    return error;
}

} // namespace tervane::files
