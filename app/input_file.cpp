#include "app/input_file.h"

#include <cerrno>
#include <cstring>
#include <sys/stat.h>

#include "app/failure.h"
#include "platform/win32/last_error.h"
#include "platform/win32/module_image.h"

namespace tervane::app {

namespace {

const char* Kind(mode_t mode) {
    if (S_ISDIR(mode))
        return "a directory";
    if (S_ISFIFO(mode))
        return "a FIFO";
    if (S_ISCHR(mode) || S_ISBLK(mode))
        return "a device";
    if (S_ISSOCK(mode))
        return "a socket";
    return "not a regular file";
}

[[noreturn]] void Fail(const std::string& path, DWORD code) {
    throw CommandFailure(path, SystemText(code, path));
}

} // namespace

void CheckInputFile(const std::string& path, std::uint64_t limit) {
    struct stat info {};
    // stat, not open: opening a FIFO with no writer would wait for one.
    if (::stat(path.c_str(), &info) != 0) {
        if (errno == ENOENT || errno == ENOTDIR)
            return;
        throw CommandFailure(path, std::strerror(errno));
    }
    if (!S_ISREG(info.st_mode))
        throw CommandFailure(path, std::string("is ") + Kind(info.st_mode) +
                                       ", not a regular file; not read");
    if (static_cast<std::uint64_t>(info.st_size) > limit)
        throw CommandFailure(path, "is larger than the " + std::to_string(limit) +
                                       " bytes that can be read; not read");
}

PeFile::PeFile(const std::string& path) {
    CheckInputFile(path, kMaxPeFileBytes);
    SetLastError(0);
    module_ = LoadLibraryExA(path.c_str(), nullptr,
                             DONT_RESOLVE_DLL_REFERENCES | LOAD_LIBRARY_AS_DATAFILE);
    if (!module_)
        Fail(path, GetLastError());
    try {
        const Result<pe::ResourceTree>& tree = *ModuleResourceTree(module_);
        if (!tree) {
            if (tree.error().code != ERROR_RESOURCE_DATA_NOT_FOUND)
                Fail(path, tree.error().code);
            return;
        }
        if (const Error* damage = tree->FirstDamage())
            Fail(path, damage->code);
        tree_ = &*tree;
    } catch (...) {
        FreeLibrary(module_);
        throw;
    }
}

void PeFile::CheckEveryResourceLoads(const std::string& path) const {
    if (tree_)
        for (const auto& type : tree_->types)
            for (const auto& name : type.names)
                for (const auto& language : name.languages)
                    if (auto data = ModuleResourceData(module_, language.data); !data)
                        Fail(path, data.error().code);
}

PeFile::~PeFile() {
    FreeLibrary(module_);
}

} // namespace tervane::app
