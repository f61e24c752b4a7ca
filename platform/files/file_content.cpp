#include "platform/files/file_content.h"

#include <sys/mman.h>

namespace tervane::files {

FileContent& FileContent::operator=(FileContent&& other) noexcept {
    if (this != &other) {
        Unmap();
        owned_ = std::move(other.owned_);
        mapped_ = std::exchange(other.mapped_, nullptr);
        mappedSize_ = std::exchange(other.mappedSize_, 0);
    }
    return *this;
}

FileContent FileContent::Map(int fd, std::size_t size) {
    FileContent content;
    if (size == 0)
        return content;
    void* at = ::mmap(nullptr, size, PROT_READ, MAP_PRIVATE, fd, 0);
    if (at == MAP_FAILED)
        return content;
    content.mapped_ = static_cast<const std::uint8_t*>(at);
    content.mappedSize_ = size;
    return content;
}

void FileContent::Unmap() noexcept {
    if (mapped_)
        ::munmap(const_cast<std::uint8_t*>(mapped_), mappedSize_);
    mapped_ = nullptr;
    mappedSize_ = 0;
}

} // namespace tervane::files
