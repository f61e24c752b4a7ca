#include "platform/update/resource_update.h"

#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#include "platform/files/file_bytes.h"
#include "platform/files/file_replace.h"
#include "platform/update/image_layout.h"
#include "platform/update/pending_files.h"
#include "platform/update/section_writer.h"
#include "platform/win32/handle_table.h"
#include "platform/win32/last_error.h"

namespace {

using namespace tervane;
using namespace tervane::update;

struct Change {
    ResKey type;
    ResKey name;
    WORD language = 0;
    Blob data; // null: delete
};

struct Transaction {
    std::string path;
    bool deleteExisting = false;
    std::vector<Change> changes;
};

using Transactions = HandleTable<Transaction>;

// Win32 opens the file for writing: a missing file, a folder or a read-only
// file fails here. The read-only attribute is the owner's write bit, which
// also holds for a process that runs as root.
DWORD CheckWritable(const char* path) {
    struct stat info {};
    if (::stat(path, &info) != 0)
        return files::LookupError(path, errno);
    if (!S_ISREG(info.st_mode) || !(info.st_mode & S_IWUSR) || ::access(path, W_OK) != 0)
        return ERROR_ACCESS_DENIED;
    return ERROR_SUCCESS;
}

} // namespace

HANDLE BeginUpdateResourceA(const char* path, BOOL deleteExistingResources) {
    if (!path || !*path) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    if (DWORD error = CheckWritable(path)) {
        SetLastError(error);
        return nullptr;
    }
    auto t = std::make_unique<Transaction>();
    t->path = files::CanonicalPath(path);
    t->deleteExisting = deleteExistingResources != FALSE;
    // The image must be readable now, as Win32 maps it here.
    auto error = WithPendingFile(
        t->path,
        [&](PendingFile& file) { return t->deleteExisting ? std::nullopt : file.treeError; }, true);
    if (error) {
        SetLastError(error->code);
        return nullptr;
    }
    return Transactions::Instance().Add(std::move(t));
}

BOOL UpdateResourceA(HANDLE update, const ResName& type, const ResName& name, WORD language,
                     const void* data, DWORD size) {
    Transaction* t = Transactions::Instance().Find(update);
    if (!t) {
        SetLastError(ERROR_INVALID_HANDLE);
        return FALSE;
    }
    if (!data && size != 0) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    auto typeKey = KeyFromResName(type);
    auto nameKey = KeyFromResName(name);
    if (!typeKey || !nameKey) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    Blob blob;
    if (data) {
        auto bytes = static_cast<const std::uint8_t*>(data);
        blob = MakeBlob(std::vector<std::uint8_t>(bytes, bytes + size));
    }
    t->changes.push_back(
        Change{std::move(*typeKey), std::move(*nameKey), language, std::move(blob)});
    return TRUE;
}

BOOL EndUpdateResourceA(HANDLE update, BOOL discard) {
    std::unique_ptr<Transaction> t = Transactions::Instance().Take(update);
    if (!t) {
        SetLastError(ERROR_INVALID_HANDLE);
        return FALSE;
    }
    // The state read at the start serves until here, on every way out.
    struct Release {
        const std::string& path;
        ~Release() { ReleasePendingFile(path); }
    } release{t->path};
    if (discard)
        return TRUE;
    if (DWORD error = CheckWritable(t->path.c_str())) {
        SetLastError(error);
        return FALSE;
    }
    auto error = WithPendingFile(t->path, [&](PendingFile& file) -> std::optional<Error> {
        // Applied in place with an undo log, so that a result that does not
        // fit changes nothing; copying the tree would cost O(resources) per
        // transaction.
        if (file.treeError && !t->deleteExisting)
            return file.treeError;
        struct Undo {
            const Change* change;
            std::optional<ResourceLeaf> before;
        };
        std::vector<Undo> undo;
        ResourceTree saved;
        if (t->deleteExisting)
            std::swap(saved, file.tree);
        for (Change& change : t->changes) {
            const ResourceLeaf* old = file.tree.Find(change.type, change.name, change.language);
            undo.push_back({&change, old ? std::optional<ResourceLeaf>(*old) : std::nullopt});
            if (change.data)
                file.tree.Set(change.type, change.name, change.language, change.data);
            else
                file.tree.Remove(change.type, change.name, change.language);
        }
        auto size = ResourceSectionSize(file.tree);
        std::optional<Error> error;
        if (!size)
            error = std::move(size.error());
        else if (auto plan = PlanImage(file.image, *size); !plan)
            error = std::move(plan.error());
        if (error) {
            for (auto it = undo.rbegin(); it != undo.rend(); ++it) {
                const Change& c = *it->change;
                file.tree.Remove(c.type, c.name, c.language);
                if (it->before)
                    file.tree.Insert(c.type, c.name, c.language, *it->before);
            }
            if (t->deleteExisting)
                std::swap(saved, file.tree);
            return error;
        }
        if (!t->changes.empty() || t->deleteExisting)
            file.dirty = true;
        if (t->deleteExisting)
            file.treeError.reset();
        return std::nullopt;
    });
    if (error) {
        SetLastError(error->code);
        return FALSE;
    }
    return TRUE;
}
