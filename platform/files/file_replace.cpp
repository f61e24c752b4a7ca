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

std::optional<Error> ReplaceFileContent(const std::string& path, Bytes bytes, mode_t mode) {
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
    std::size_t written = 0;
    while (written < bytes.size()) {
        ssize_t got = ::write(fd, bytes.data() + written, bytes.size() - written);
        if (got < 0) {
            if (errno == EINTR)
                continue;
            return fail(errno);
        }
        written += static_cast<std::size_t>(got);
    }
    // Keep the owner where we may (as root); elsewhere the new file is ours,
    // as on any rewrite.
    struct stat old {};
    if (::stat(path.c_str(), &old) == 0 && ::fchown(fd, old.st_uid, old.st_gid) != 0)
        errno = 0;
    // The rename below is what makes the new content visible; it must not
    // become visible before the content itself is on the disk.
    if (::fchmod(fd, mode) != 0 || ::fsync(fd) != 0)
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

} // namespace tervane::files
