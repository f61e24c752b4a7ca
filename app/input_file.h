#pragma once
// What the commands read, judged before anything reads it: only regular files
// of a bounded size, and PE files by one verdict that list and extract share.
#include <cstdint>
#include <string>

#include "platform/pe/resource_directory.h"
#include "platform/win32/resources.h"

namespace tervane::app {

// The reader holds the whole file in memory and addresses it with the PE
// format's 32-bit offsets; Win32 itself refuses images past 4 GiB.
inline constexpr std::uint64_t kMaxPeFileBytes = 0xFFFFFFFF;
// A resource's bytes must fit, with the rest, in a resource section that the
// writer keeps below 2 GiB.
inline constexpr std::uint64_t kMaxDataFileBytes = 0x7FFFFFFF;

// Refuses a directory, a FIFO, a device or a file larger than limit, naming
// it; throws CommandFailure. A missing file is left to the reader, whose
// message the user knows from Win32.
void CheckInputFile(const std::string& path, std::uint64_t limit);

// A PE file loaded as data, once it has passed the checks of CheckInputFile,
// its headers load and its resource directory has no damage: the verdict of
// list and extract alike. Throws CommandFailure with the system's text
// otherwise. A resource that cannot be loaded is the conversion's to report.
class PeFile {
public:
    explicit PeFile(const std::string& path);
    ~PeFile();
    PeFile(const PeFile&) = delete;
    PeFile& operator=(const PeFile&) = delete;

    // Each resource as LoadResource loads it; throws CommandFailure.
    void CheckEveryResourceLoads(const std::string& path) const;
    // Null for a file without resources, which is no failure.
    const pe::ResourceTree* Resources() const { return tree_; }

private:
    HMODULE module_ = nullptr;
    const pe::ResourceTree* tree_ = nullptr;
};

} // namespace tervane::app
