#pragma once
// The process-wide registry of files with resource updates not yet written.
// A transaction (BeginUpdateResourceA ... EndUpdateResourceA) changes the
// parsed image kept here; the file itself is rewritten once, when a call of
// the platform layer next looks at it (reading, copying, moving, finding,
// starting a process) or when the process ends normally.
#include <functional>
#include <optional>
#include <string>
#include <sys/types.h>

#include "platform/pe/pe_image.h"
#include "platform/update/resource_tree.h"

namespace tervane::update {

// Writes out the pending updates of the file at path, if it has any. A
// failure leaves the file as it was and the updates pending.
std::optional<Error> FlushPendingFile(const std::string& path);
// For calls that hand files to other processes, and for the end of the process.
std::optional<Error> FlushAllPendingFiles();
// Forgets the pending updates: the file is about to be deleted or overwritten.
void DiscardPendingFile(const std::string& path);
bool HasPendingUpdates(const std::string& path);

// The state of one file between transactions.
struct PendingFile {
    pe::PeImage image;  // the file as it was last read from the disk
    ResourceTree tree;  // its resources now
    bool dirty = false; // tree differs from what the disk holds
    // Why the file's resources could not be read; only a transaction that
    // drops them all may then go ahead.
    std::optional<Error> treeError;
};

// Runs work on the file's state, read from the disk first when the registry
// does not hold it or the disk copy changed behind its back. canonicalPath
// comes from files::CanonicalPath. With hold, a successful work keeps the
// state even while it is clean, until ReleasePendingFile: an update
// transaction reads the file once, not at its start and again at its end.
std::optional<Error> WithPendingFile(const std::string& canonicalPath,
                                     const std::function<std::optional<Error>(PendingFile&)>& work,
                                     bool hold = false);
// Gives up one hold; a clean state without holds is dropped.
void ReleasePendingFile(const std::string& canonicalPath);

} // namespace tervane::update
