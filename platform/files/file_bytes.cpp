#include "platform/files/file_bytes.h"

#include "platform/files/file_content.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

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
    explicit Fd(int opened) : fd(opened) {}
    Fd(Fd&& other) noexcept : fd(std::exchange(other.fd, -1)) {}
    Fd& operator=(Fd&&) = delete;
    int fd;
    ~Fd() {
        if (fd >= 0)
            ::close(fd);
    }
};

struct OpenFile {
    Fd file;
    struct stat info;
};

// Win32 refuses to open a folder as a file.
Result<OpenFile> OpenForReading(const std::string& path) {
    OpenFile open{Fd(::open(path.c_str(), O_RDONLY | O_CLOEXEC)), {}};
    if (open.file.fd < 0)
        return Error{Win32ErrorFromErrno(errno), path};
    if (::fstat(open.file.fd, &open.info) != 0)
        return Error{Win32ErrorFromErrno(errno), path};
    if (S_ISDIR(open.info.st_mode))
        return Error{ERROR_ACCESS_DENIED, path};
    return open;
}

Result<std::vector<std::uint8_t>> ReadAll(const OpenFile& open, const std::string& path) {
    std::vector<std::uint8_t> bytes;
    // A regular file is read straight into its room; a pipe grows as it gives.
    std::size_t room = S_ISREG(open.info.st_mode) ? static_cast<std::size_t>(open.info.st_size) : 0;
    bytes.resize(std::max<std::size_t>(room, 1 << 16));
    std::size_t filled = 0;
    for (;;) {
        // Once the room is full, a small read tells whether the file grew.
        std::uint8_t spare[4096];
        const bool full = filled == bytes.size();
        ssize_t got = ::read(open.file.fd, full ? spare : bytes.data() + filled,
                             full ? sizeof spare : bytes.size() - filled);
        if (got < 0) {
            if (errno == EINTR)
                continue;
            return Error{Win32ErrorFromErrno(errno), path};
        }
        if (got == 0)
            break;
        if (full)
            bytes.insert(bytes.end(), spare, spare + got);
        filled += static_cast<std::size_t>(got);
    }
    bytes.resize(filled);
    return bytes;
}

// Below this, reading costs less than setting up a mapping.
constexpr off_t kMapThreshold = 256 * 1024;

} // namespace

Result<std::vector<std::uint8_t>> ReadDiskBytes(const std::string& path) {
    auto open = OpenForReading(path);
    if (!open)
        return std::move(open.error());
    return ReadAll(*open, path);
}

Result<std::vector<std::uint8_t>> ReadFileBytes(const std::string& path) {
    if (auto error = update::FlushPendingFile(path))
        return std::move(*error);
    return ReadDiskBytes(path);
}

Result<FileContent> ReadFileContent(const std::string& path) {
    if (auto error = update::FlushPendingFile(path))
        return std::move(*error);
    auto open = OpenForReading(path);
    if (!open)
        return std::move(open.error());
    if (S_ISREG(open->info.st_mode) && open->info.st_size >= kMapThreshold) {
        FileContent mapped =
            FileContent::Map(open->file.fd, static_cast<std::size_t>(open->info.st_size));
        if (!mapped.empty())
            return mapped;
    }
    auto bytes = ReadAll(*open, path);
    if (!bytes)
        return std::move(bytes.error());
    return FileContent(std::move(*bytes));
}

} // namespace tervane::files
