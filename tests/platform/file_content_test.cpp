#include "platform/files/file_content.h"

#include <gtest/gtest.h>

#include "platform/files/file_bytes.h"
#include "platform/win32/last_error.h"
#include "tests/support/fixtures.h"

namespace tervane {
namespace {

std::vector<unsigned char> Pattern(std::size_t size) {
    std::vector<unsigned char> bytes(size);
    for (std::size_t i = 0; i < size; ++i)
        bytes[i] = static_cast<unsigned char>(i * 7 + i / 251);
    return bytes;
}

TEST(FileContent, MappedAndReadFilesGiveTheirBytes) {
    const std::string dir = test::TempDir();
    // Around the read buffer and the size from which files are mapped.
    for (std::size_t size :
         {std::size_t{5}, std::size_t{65536}, std::size_t{65537}, std::size_t{256 * 1024 - 1},
          std::size_t{256 * 1024}, std::size_t{(1 << 20) + 3}}) {
        const std::string path = dir + "/f" + std::to_string(size);
        const std::vector<unsigned char> written = Pattern(size);
        test::WriteFile(path, written);
        auto content = files::ReadFileContent(path);
        ASSERT_TRUE(content) << size;
        Bytes mapped = content->bytes();
        EXPECT_TRUE(std::equal(mapped.begin(), mapped.end(), written.begin(), written.end()))
            << size;
        files::FileContent moved = std::move(*content);
        EXPECT_EQ(moved.size(), size);
        auto read = files::ReadDiskBytes(path);
        ASSERT_TRUE(read) << size;
        EXPECT_TRUE(*read == written) << size;
    }
    EXPECT_EQ(files::ReadFileContent(dir).error().code, DWORD{ERROR_ACCESS_DENIED});
    EXPECT_EQ(files::ReadFileContent(dir + "/missing").error().code, DWORD{ERROR_FILE_NOT_FOUND});
}

} // namespace
} // namespace tervane
