#include "platform/update/pending_files.h"

#include <cstdio>
#include <map>
#include <memory>
#include <mutex>
#include <sys/stat.h>

#include "platform/files/file_bytes.h"
#include "platform/files/file_replace.h"
#include "platform/update/image_layout.h"
#include "platform/update/resource_reader.h"
#include "platform/win32/last_error.h"

namespace tervane::update {

namespace {

// What identifies one version of a file on the disk; a permission change
// does not count, since the update calls are wrapped in such changes.
struct Stamp {
    dev_t device = 0;
    ino_t inode = 0;
    off_t size = 0;
    std::int64_t modifiedSeconds = 0;
    std::int64_t modifiedNanoseconds = 0;
    bool operator==(const Stamp&) const = default;
};

std::optional<Stamp> StampOf(const std::string& path) {
    struct stat info {};
    if (::stat(path.c_str(), &info) != 0)
        return std::nullopt;
    return Stamp{info.st_dev, info.st_ino, info.st_size, info.st_mtim.tv_sec, info.st_mtim.tv_nsec};
}

struct Entry {
    PendingFile file;
    Stamp stamp;
    int holds = 0; // open transactions
};

class Registry {
public:
    static Registry& Instance() {
        static Registry registry;
        return registry;
    }

    // Nothing may be lost when the process ends normally.
    ~Registry() {
        for (auto& [path, entry] : entries_) {
            if (auto error = Write(path, *entry))
                std::fprintf(stderr, "tervane: could not write the resources of %s (error %u)\n",
                             path.c_str(), static_cast<unsigned>(error->code));
        }
    }

    std::optional<Error> With(const std::string& path,
                              const std::function<std::optional<Error>(PendingFile&)>& work,
                              bool hold) {
        std::lock_guard lock(mutex_);
        auto stamp = StampOf(path);
        auto it = entries_.find(path);
        // A file rewritten behind the platform layer's back wins over
        // updates that were never written.
        if (it != entries_.end() && (!stamp || !(*stamp == it->second->stamp)))
            it = entries_.erase(it);
        if (it == entries_.end()) {
            auto bytes = files::ReadDiskBytes(path);
            if (!bytes)
                return std::move(bytes.error());
            auto image = pe::PeImage::Parse(std::move(*bytes));
            if (!image)
                return std::move(image.error()).With(path);
            auto tree = ReadResourceTree(*image);
            PendingFile file{std::move(*image), {}, false, {}};
            if (tree)
                file.tree = std::move(*tree);
            else
                file.treeError = std::move(tree.error()).With(path);
            auto entry =
                std::make_unique<Entry>(Entry{std::move(file), stamp.value_or(Stamp{}), 0});
            it = entries_.emplace(path, std::move(entry)).first;
        }
        auto result = work(it->second->file);
        if (hold && !result)
            ++it->second->holds;
        DropIfIdle(it);
        return result;
    }

    void Release(const std::string& path) {
        std::lock_guard lock(mutex_);
        auto it = entries_.find(path);
        if (it == entries_.end())
            return;
        if (it->second->holds > 0)
            --it->second->holds;
        DropIfIdle(it);
    }

    std::optional<Error> Flush(const std::string& path) {
        std::lock_guard lock(mutex_);
        auto it = entries_.find(path);
        if (it == entries_.end())
            return std::nullopt;
        if (auto error = Write(path, *it->second))
            return error;
        entries_.erase(it);
        return std::nullopt;
    }

    std::optional<Error> FlushAll() {
        std::lock_guard lock(mutex_);
        std::optional<Error> first;
        for (auto it = entries_.begin(); it != entries_.end();) {
            if (auto error = Write(it->first, *it->second)) {
                if (!first)
                    first = std::move(error);
                ++it;
            } else {
                it = entries_.erase(it);
            }
        }
        return first;
    }

    void Discard(const std::string& path) {
        std::lock_guard lock(mutex_);
        entries_.erase(path);
    }

    bool Has(const std::string& path) {
        std::lock_guard lock(mutex_);
        return entries_.count(path) != 0;
    }

private:
    using Entries = std::map<std::string, std::unique_ptr<Entry>>;

    // Clean state costs memory and buys nothing once no transaction needs it.
    void DropIfIdle(Entries::iterator it) {
        if (!it->second->file.dirty && it->second->holds == 0)
            entries_.erase(it);
    }

    static std::optional<Error> Write(const std::string& path, Entry& entry) {
        if (!entry.file.dirty)
            return std::nullopt;
        if (auto stamp = StampOf(path); !stamp || !(*stamp == entry.stamp))
            return Error{ERROR_FILE_INVALID, path + ": changed on disk since it was read"};
        auto bytes = RewriteImage(entry.file.image, entry.file.tree);
        if (!bytes)
            return std::move(bytes.error()).With(path);
        return files::ReplaceFileContent(path, *bytes, files::PermissionsFor(path));
    }

    std::mutex mutex_;
    Entries entries_;
};

} // namespace

std::optional<Error> FlushPendingFile(const std::string& path) {
    return Registry::Instance().Flush(files::CanonicalPath(path));
}

std::optional<Error> FlushAllPendingFiles() {
    return Registry::Instance().FlushAll();
}

void DiscardPendingFile(const std::string& path) {
    Registry::Instance().Discard(files::CanonicalPath(path));
}

bool HasPendingUpdates(const std::string& path) {
    return Registry::Instance().Has(files::CanonicalPath(path));
}

std::optional<Error> WithPendingFile(const std::string& canonicalPath,
                                     const std::function<std::optional<Error>(PendingFile&)>& work,
                                     bool hold) {
    return Registry::Instance().With(canonicalPath, work, hold);
}

void ReleasePendingFile(const std::string& canonicalPath) {
    Registry::Instance().Release(canonicalPath);
}

} // namespace tervane::update
