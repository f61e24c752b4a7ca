#pragma once
// The bytes of a file for as long as the value lives: a read-only mapping of
// a large regular file, or bytes in memory. A module loaded as data reads its
// headers and its resources only, so mapping spares reading the code of a
// large image. As with any mapped reader, a file that another process cuts
// short while it is mapped faults on the lost pages; files are not locked.
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "platform/byte_reader.h"
#include "platform/result.h"

namespace tervane::files {

class FileContent {
public:
    FileContent() = default;
    // Bytes already in memory, held as they are.
    FileContent(std::vector<std::uint8_t> bytes) : owned_(std::move(bytes)) {}
    FileContent(FileContent&& other) noexcept { *this = std::move(other); }
    FileContent& operator=(FileContent&& other) noexcept;
    FileContent(const FileContent&) = delete;
    FileContent& operator=(const FileContent&) = delete;
    ~FileContent() { Unmap(); }

    Bytes bytes() const { return mapped_ ? Bytes(mapped_, mappedSize_) : Bytes(owned_); }
    std::size_t size() const { return bytes().size(); }
    bool empty() const { return size() == 0; }

    // Maps the open regular file fd of size bytes; an empty value when the
    // system refuses the mapping.
    static FileContent Map(int fd, std::size_t size);

private:
    void Unmap() noexcept;

    std::vector<std::uint8_t> owned_;
    const std::uint8_t* mapped_ = nullptr;
    std::size_t mappedSize_ = 0;
};

// ReadFileBytes' checks and failures, but a large regular file is mapped
// instead of read.
Result<FileContent> ReadFileContent(const std::string& path);

} // namespace tervane::files
