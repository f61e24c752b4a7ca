#include "app/output_folder.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "app/failure.h"

namespace tervane::app {

namespace fs = std::filesystem;

namespace {

std::string Reason(int error) {
    return std::strerror(error);
}

// "out/" and "out" are the same folder; its name is what the rename needs.
fs::path Normal(const std::string& path) {
    std::string trimmed = path;
    while (trimmed.size() > 1 && trimmed.back() == '/')
        trimmed.pop_back();
    return fs::path(trimmed);
}

bool IsEmptyFolder(const fs::path& path) {
    std::error_code error;
    return fs::is_empty(path, error) && !error;
}

} // namespace

OutputFolder::OutputFolder(const std::string& path,
                           const std::function<bool(const fs::path&)>& isOurs)
    : shown_(path), target_(Normal(path)) {
    const std::string name = target_.filename().string();
    if (path.empty() || name.empty() || name == "." || name == "..")
        throw CommandFailure(path, "name the folder to write by its own name");
    struct stat info {};
    if (::lstat(target_.c_str(), &info) == 0) {
        if (S_ISLNK(info.st_mode))
            throw CommandFailure(path, "is a link; name the folder itself; not written");
        if (!S_ISDIR(info.st_mode))
            throw CommandFailure(path, "exists and is not a folder; not written");
        if (!IsEmptyFolder(target_) && !isOurs(target_))
            throw CommandFailure(path, "is a folder that holds other things than an earlier "
                                       "result of this command; not written");
    } else if (errno != ENOENT) {
        throw CommandFailure(path, Reason(errno));
    }
    const fs::path parent = target_.has_parent_path() ? target_.parent_path() : fs::path(".");
    std::string temporary = (parent / ("." + name + ".tervane-XXXXXX")).string();
    if (::mkdtemp(temporary.data()) == nullptr)
        throw CommandFailure(path,
                             "cannot create a folder in " + parent.string() + ": " + Reason(errno));
    temporary_ = temporary;
}

OutputFolder::~OutputFolder() {
    if (committed_ || temporary_.empty())
        return;
    std::error_code ignored;
    fs::remove_all(temporary_, ignored);
}

void OutputFolder::Commit() {
    // mkdtemp made it private; a result is as open as any new folder.
    const mode_t mask = ::umask(0);
    ::umask(mask);
    if (::chmod(temporary_.c_str(), 0777 & ~mask) != 0)
        throw CommandFailure(shown_, Reason(errno));
    // An absent or empty target is taken over at once.
    if (std::rename(temporary_.c_str(), target_.c_str()) == 0) {
        committed_ = true;
        return;
    }
    if (errno != ENOTEMPTY && errno != EEXIST)
        throw CommandFailure(shown_, Reason(errno));
    // An earlier result: the two change places in one step, and the old one,
    // now under the temporary name, goes.
    if (::renameat2(AT_FDCWD, temporary_.c_str(), AT_FDCWD, target_.c_str(), RENAME_EXCHANGE) !=
        0) {
        if (errno != EINVAL && errno != ENOSYS)
            throw CommandFailure(shown_, Reason(errno));
        // A file system without the exchange: the old one steps aside first.
        fs::path old = temporary_;
        old += ".old";
        if (std::rename(target_.c_str(), old.c_str()) != 0)
            throw CommandFailure(shown_, Reason(errno));
        if (std::rename(temporary_.c_str(), target_.c_str()) != 0) {
            const int error = errno;
            std::rename(old.c_str(), target_.c_str());
            throw CommandFailure(shown_, Reason(error));
        }
        temporary_ = old;
    }
    committed_ = true;
    std::error_code ignored;
    fs::remove_all(temporary_, ignored);
}

} // namespace tervane::app
