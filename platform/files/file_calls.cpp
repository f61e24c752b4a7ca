#include "platform/files/file_calls.h"

#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <fnmatch.h>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#include "platform/files/file_bytes.h"
#include "platform/files/file_replace.h"
#include "platform/pe/resource_name_text.h"
#include "platform/update/pending_files.h"
#include "platform/win32/handle_table.h"
#include "platform/win32/last_error.h"

namespace {

using namespace tervane;

bool Fail(DWORD error) {
    SetLastError(error);
    return false;
}

bool FailErrno() {
    return Fail(files::Win32ErrorFromErrno(errno));
}

bool FailLookup(const char* path) {
    return Fail(files::LookupError(path, errno));
}

bool Flush(const char* path) {
    if (auto error = update::FlushPendingFile(path))
        return Fail(error->code);
    return true;
}

bool IsReadOnly(const struct stat& info) {
    return !(info.st_mode & S_IWUSR);
}

// Windows' FILETIME counts 100 ns from 1601.
FILETIME ToFileTime(const struct timespec& t) {
    constexpr std::uint64_t kEpochDifference = 11644473600ULL;
    std::uint64_t ticks = (static_cast<std::uint64_t>(t.tv_sec) + kEpochDifference) * 10000000ULL +
                          static_cast<std::uint64_t>(t.tv_nsec) / 100;
    return FILETIME{static_cast<DWORD>(ticks), static_cast<DWORD>(ticks >> 32)};
}

void Fill(WIN32_FIND_DATAA* data, const struct stat& info, const std::string& name) {
    *data = WIN32_FIND_DATAA{};
    data->dwFileAttributes =
        S_ISDIR(info.st_mode) ? FILE_ATTRIBUTE_DIRECTORY : FILE_ATTRIBUTE_ARCHIVE;
    if (IsReadOnly(info))
        data->dwFileAttributes |= FILE_ATTRIBUTE_READONLY;
    data->ftCreationTime = ToFileTime(info.st_ctim);
    data->ftLastAccessTime = ToFileTime(info.st_atim);
    data->ftLastWriteTime = ToFileTime(info.st_mtim);
    auto size = static_cast<std::uint64_t>(info.st_size);
    data->nFileSizeHigh = static_cast<DWORD>(size >> 32);
    data->nFileSizeLow = static_cast<DWORD>(size);
    std::strncpy(data->cFileName, name.c_str(), MAX_PATH - 1);
}

struct FindState {
    std::string folder;
    std::vector<std::string> matches;
    std::size_t next = 0;
};

using FindHandles = HandleTable<FindState>;

bool NextMatch(FindState& state, WIN32_FIND_DATAA* data) {
    while (state.next < state.matches.size()) {
        const std::string& name = state.matches[state.next++];
        std::string path = state.folder + "/" + name;
        // The size reported must be the size after the pending updates.
        if (!Flush(path.c_str()))
            return false;
        struct stat info {};
        if (::stat(path.c_str(), &info) == 0) {
            Fill(data, info, name);
            return true;
        }
    }
    return Fail(ERROR_NO_MORE_FILES);
}

std::string NarrowPath(const char16_t* path) {
    return pe::Utf16ToUtf8(std::u16string_view(path));
}

// Copies through a temporary file, so that the target is never half-written.
bool CopyContent(const char* from, const char* to) {
    if (auto error = tervane::update::FlushPendingFile(from))
        return Fail(error->code);
    if (auto error = files::ReplaceFileWithCopy(to, from, files::PermissionsFor(from)))
        return Fail(error->code);
    return true;
}

} // namespace

BOOL CopyFileA(const char* from, const char* to, BOOL failIfExists) {
    if (!from || !to)
        return Fail(ERROR_INVALID_PARAMETER);
    struct stat source {
    }, target{};
    if (::stat(from, &source) != 0)
        return FailLookup(from);
    if (S_ISDIR(source.st_mode))
        return Fail(ERROR_ACCESS_DENIED);
    if (::stat(to, &target) == 0) {
        if (failIfExists)
            return Fail(ERROR_FILE_EXISTS);
        if (S_ISDIR(target.st_mode) || IsReadOnly(target))
            return Fail(ERROR_ACCESS_DENIED);
        if (source.st_dev == target.st_dev && source.st_ino == target.st_ino)
            return Fail(ERROR_SHARING_VIOLATION);
    }
    if (!CopyContent(from, to))
        return FALSE;
    tervane::update::DiscardPendingFile(to);
    return TRUE;
}

BOOL MoveFileExA(const char* from, const char* to, DWORD flags) {
    if (!from || !to)
        return Fail(ERROR_INVALID_PARAMETER);
    struct stat source {
    }, target{};
    if (::lstat(from, &source) != 0)
        return FailLookup(from);
    bool sameFile = false;
    if (::stat(to, &target) == 0) {
        sameFile = source.st_dev == target.st_dev && source.st_ino == target.st_ino;
        if (!sameFile && !(flags & MOVEFILE_REPLACE_EXISTING))
            return Fail(ERROR_ALREADY_EXISTS);
        if (!sameFile && (S_ISDIR(target.st_mode) || IsReadOnly(target)))
            return Fail(ERROR_ACCESS_DENIED);
    }
    if (!Flush(from))
        return FALSE;
    if (sameFile)
        return TRUE;
    if (::rename(from, to) == 0) {
        tervane::update::DiscardPendingFile(to);
        return TRUE;
    }
    if (errno != EXDEV || !(flags & MOVEFILE_COPY_ALLOWED))
        return FailErrno();
    if (!CopyContent(from, to))
        return FALSE;
    tervane::update::DiscardPendingFile(to);
    if (::unlink(from) != 0)
        return FailErrno();
    return TRUE;
}

BOOL DeleteFileA(const char* path) {
    if (!path)
        return Fail(ERROR_INVALID_PARAMETER);
    struct stat info {};
    if (::lstat(path, &info) != 0)
        return FailLookup(path);
    if (S_ISDIR(info.st_mode) || (S_ISREG(info.st_mode) && IsReadOnly(info)))
        return Fail(ERROR_ACCESS_DENIED);
    std::string canonical = tervane::files::CanonicalPath(path);
    if (::unlink(path) != 0)
        return FailErrno();
    tervane::update::DiscardPendingFile(canonical);
    return TRUE;
}

HANDLE FindFirstFileA(const char* pattern, WIN32_FIND_DATAA* data) {
    if (!pattern || !data) {
        Fail(ERROR_INVALID_PARAMETER);
        return INVALID_HANDLE_VALUE;
    }
    std::string text(pattern);
    auto slash = text.find_last_of('/');
    auto state = std::make_unique<FindState>();
    state->folder = slash == std::string::npos ? "." : slash == 0 ? "/" : text.substr(0, slash);
    std::string name = slash == std::string::npos ? text : text.substr(slash + 1);
    if (name.find_first_of("*?") == std::string::npos) {
        state->matches.push_back(name);
    } else {
        DIR* dir = ::opendir(state->folder.c_str());
        if (!dir) {
            Fail(errno == ENOENT ? ERROR_PATH_NOT_FOUND : files::Win32ErrorFromErrno(errno));
            return INVALID_HANDLE_VALUE;
        }
        while (dirent* entry = ::readdir(dir))
            if (::fnmatch(name.c_str(), entry->d_name, FNM_PERIOD) == 0)
                state->matches.emplace_back(entry->d_name);
        ::closedir(dir);
    }
    if (!NextMatch(*state, data)) {
        if (GetLastError() == ERROR_NO_MORE_FILES)
            SetLastError(ERROR_FILE_NOT_FOUND);
        return INVALID_HANDLE_VALUE;
    }
    return FindHandles::Instance().Add(std::move(state));
}

BOOL FindNextFileA(HANDLE find, WIN32_FIND_DATAA* data) {
    FindState* state = FindHandles::Instance().Find(find);
    if (!state || !data)
        return Fail(state ? ERROR_INVALID_PARAMETER : ERROR_INVALID_HANDLE);
    return NextMatch(*state, data);
}

BOOL FindClose(HANDLE find) {
    if (!FindHandles::Instance().Take(find))
        return Fail(ERROR_INVALID_HANDLE);
    return TRUE;
}

DWORD GetFileAttributesA(const char* path) {
    WIN32_FIND_DATAA data;
    struct stat info {};
    if (!path || ::stat(path, &info) != 0) {
        path ? FailLookup(path) : Fail(ERROR_INVALID_PARAMETER);
        return INVALID_FILE_ATTRIBUTES;
    }
    Fill(&data, info, "");
    return data.dwFileAttributes;
}

// Permissions are metadata: neither call needs the pending content written,
// and the update calls are wrapped in them, so they must stay cheap.
int _waccess(const char16_t* path, int mode) {
    if (!path) {
        errno = EINVAL;
        return -1;
    }
    std::string narrow = NarrowPath(path);
    struct stat info {};
    if (::stat(narrow.c_str(), &info) != 0)
        return -1;
    if ((mode & 2) && (IsReadOnly(info) || ::access(narrow.c_str(), W_OK) != 0)) {
        errno = EACCES;
        return -1;
    }
    if ((mode & 4) && ::access(narrow.c_str(), R_OK) != 0)
        return -1;
    return 0;
}

int _wchmod(const char16_t* path, int mode) {
    if (!path) {
        errno = EINVAL;
        return -1;
    }
    std::string narrow = NarrowPath(path);
    struct stat info {};
    if (::stat(narrow.c_str(), &info) != 0)
        return -1;
    mode_t bits = info.st_mode & 07777;
    bits = (mode & _S_IWRITE) ? (bits | S_IWUSR) : (bits & ~mode_t{0222});
    return ::chmod(narrow.c_str(), bits);
}

FILE* _wfopen(const char16_t* path, const char16_t* mode) {
    if (!path || !mode) {
        errno = EINVAL;
        return nullptr;
    }
    std::string narrow = NarrowPath(path);
    if (!Flush(narrow.c_str())) {
        errno = EIO;
        return nullptr;
    }
    return std::fopen(narrow.c_str(), NarrowPath(mode).c_str());
}
