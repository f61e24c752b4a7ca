#include "platform/files/file_bytes.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/update/pending_files.h"
#include "platform/win32/last_error.h"

namespace tervane::files {

DWORD Win32ErrorFromErrno(int error) {
    switch (error) {
    case ENOENT:
        return ERROR_FILE_NOT_FOUND;
    case ENOTDIR:
    case ENAMETOOLONG:
        return ERROR_PATH_NOT_FOUND;
    case EACCES:
    case EPERM:
    case EISDIR:
    case EROFS:
        return ERROR_ACCESS_DENIED;
    case ENOMEM:
        return ERROR_NOT_ENOUGH_MEMORY;
    case ENOSPC:
    case EFBIG:
    case EDQUOT:
        return ERROR_DISK_FULL;
    case EEXIST:
        return ERROR_FILE_EXISTS;
    default:
        return ERROR_READ_FAULT;
    }
}

namespace {
struct Fd {
    int fd;
    ~Fd() {
        if (fd >= 0)
            ::close(fd);
    }
};
} // namespace

Result<std::vector<std::uint8_t>> ReadDiskBytes(const std::string& path) {
    Fd file{::open(path.c_str(), O_RDONLY | O_CLOEXEC)};
    if (file.fd < 0)
        return Error{Win32ErrorFromErrno(errno), path};
    struct stat info {};
    if (::fstat(file.fd, &info) != 0)
        return Error{Win32ErrorFromErrno(errno), path};
    // Win32 refuses to open a folder as a file.
    if (S_ISDIR(info.st_mode))
        return Error{ERROR_ACCESS_DENIED, path};
    std::vector<std::uint8_t> bytes;
    if (S_ISREG(info.st_mode))
        bytes.reserve(static_cast<std::size_t>(info.st_size));
    std::uint8_t chunk[1 << 16];
    for (;;) {
        ssize_t got = ::read(file.fd, chunk, sizeof chunk);
        if (got < 0) {
            if (errno == EINTR)
                continue;
            return Error{Win32ErrorFromErrno(errno), path};
        }
        if (got == 0)
            break;
        bytes.insert(bytes.end(), chunk, chunk + got);
    }
    return bytes;
}

Result<std::vector<std::uint8_t>> ReadFileBytes(const std::string& path) {
    if (auto error = update::FlushPendingFile(path))
        return std::move(*error);
    return ReadDiskBytes(path);
}

} // namespace tervane::files
