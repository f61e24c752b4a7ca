#include "app/output_file.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "app/failure.h"
#include "platform/files/file_replace.h"

namespace tervane::app {

namespace {

const char* const kStandardOutput = "standard output";

std::string Reason(int error) {
    return std::strerror(error);
}

// What the target is, after the checks: absent, or a regular file.
struct Target {
    std::string path; // where the result goes: a link's file, not the link
    bool exists = false;
    struct stat info {};
};

Target Check(const std::string& path, const std::vector<std::string>& inputs) {
    Target target{path};
    struct stat link {};
    if (::lstat(path.c_str(), &link) != 0) {
        if (errno != ENOENT)
            throw CommandFailure(path, Reason(errno));
        return target;
    }
    // A link keeps pointing where it did: its file is what gets replaced.
    if (::stat(path.c_str(), &target.info) != 0 || !S_ISREG(target.info.st_mode))
        throw CommandFailure(path, "exists and is not a regular file; not written");
    if (S_ISLNK(link.st_mode))
        target.path = files::CanonicalPath(path);
    target.exists = true;
    for (const std::string& input : inputs) {
        struct stat in {};
        if (::stat(input.c_str(), &in) == 0 && in.st_dev == target.info.st_dev &&
            in.st_ino == target.info.st_ino)
            throw CommandFailure(path, "is the same file as the input " + input + "; not written");
    }
    return target;
}

} // namespace

void CheckOutputPath(const std::string& path, const std::vector<std::string>& inputs) {
    if (!path.empty() && path != "-")
        Check(path, inputs);
}

OutputFile::OutputFile(const std::string& path, const std::vector<std::string>& inputs) {
    if (path.empty() || path == "-") {
        shown_ = kStandardOutput;
        stream_ = stdout;
        return;
    }
    shown_ = path;
    Target target = Check(path, inputs);
    target_ = target.path;
    existed_ = target.exists;
    if (existed_) {
        mode_ = target.info.st_mode & 07777;
        owner_ = target.info.st_uid;
        group_ = target.info.st_gid;
    } else {
        mode_ = files::PermissionsFor(target_);
    }
    auto slash = target_.find_last_of('/');
    std::string folder = slash == std::string::npos ? "." : target_.substr(0, slash + 1);
    std::string name = slash == std::string::npos ? target_ : target_.substr(slash + 1);
    temporary_ = (slash == std::string::npos ? "" : folder) + "." + name + ".tervane-XXXXXX";
    int fd = ::mkstemp(temporary_.data());
    if (fd < 0) {
        int error = errno;
        temporary_.clear();
        throw CommandFailure(path, "cannot create a file in " + folder + ": " + Reason(error));
    }
    stream_ = ::fdopen(fd, "wb");
    if (!stream_) {
        int error = errno;
        ::close(fd);
        ::unlink(temporary_.c_str());
        temporary_.clear();
        throw CommandFailure(path, Reason(error));
    }
}

OutputFile::~OutputFile() {
    if (IsStandardOutput() || committed_)
        return;
    if (stream_)
        std::fclose(stream_);
    ::unlink(temporary_.c_str());
}

void OutputFile::Fail(const std::string& what) const {
    throw CommandFailure(shown_, what);
}

void OutputFile::Write(std::string_view bytes) {
    if (!stream_)
        Fail("written after its work path was taken");
    if (std::fwrite(bytes.data(), 1, bytes.size(), stream_) != bytes.size())
        Fail(Reason(errno));
}

void OutputFile::Write(std::span<const std::uint8_t> bytes) {
    Write(std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size()));
}

const std::string& OutputFile::WorkPath() {
    if (IsStandardOutput())
        Fail("standard output has no path");
    if (stream_) {
        std::FILE* stream = stream_;
        stream_ = nullptr;
        if (std::fclose(stream) != 0)
            Fail(Reason(errno));
    }
    return temporary_;
}

void OutputFile::Commit() {
    if (IsStandardOutput()) {
        if (std::fflush(stdout) != 0)
            Fail(Reason(errno));
        return;
    }
    // The owner is kept where we may (as root); elsewhere the new file is
    // ours, as on any rewrite.
    if (stream_) {
        int fd = ::fileno(stream_);
        if (existed_ && ::fchown(fd, owner_, group_) != 0)
            errno = 0;
        // The rename over an old file makes the new content visible: not
        // before it is on disk, or a crash could cost the old file. A new name
        // risks nothing, and like cp we do not wait for the disk there.
        if (std::fflush(stream_) != 0 || ::fchmod(fd, mode_) != 0 || (existed_ && ::fsync(fd) != 0))
            Fail(Reason(errno));
        std::FILE* stream = stream_;
        stream_ = nullptr;
        if (std::fclose(stream) != 0)
            Fail(Reason(errno));
    } else {
        if (existed_ && ::chown(temporary_.c_str(), owner_, group_) != 0)
            errno = 0;
        if (::chmod(temporary_.c_str(), mode_) != 0)
            Fail(Reason(errno));
    }
    if (::rename(temporary_.c_str(), target_.c_str()) != 0)
        Fail(Reason(errno));
    committed_ = true;
}

void CloseStandardOutput() {
    // A flush on the way may have failed already; its error stays on the stream.
    const bool failedBefore = std::ferror(stdout) != 0;
    const int closed = std::fclose(stdout);
    if (closed != 0)
        throw CommandFailure(kStandardOutput, Reason(errno));
    if (failedBefore)
        throw CommandFailure(kStandardOutput, "not everything could be written");
}

} // namespace tervane::app
