#include "platform/pe/pe_image.h"

#include <gtest/gtest.h>

#include "platform/win32/last_error.h"
#include "tests/support/fixtures.h"

namespace tervane::pe {
namespace {

// Truncated files are the resource reader's tests; these are whole but wrong.
TEST(PeImage, RejectsWhatIsNoImage) {
    const auto good = test::ReadFile(test::FixturePath("sample", "x64"));
    // Offsets from e_lfanew: the PE signature, the optional header's magic.
    for (const std::uint32_t at : {0u, 24u}) {
        std::vector<std::uint8_t> bytes(good.begin(), good.end());
        bytes[LoadU32LE(&bytes[0x3C]) + at] ^= 0xFF;
        auto image = PeImage::Parse(bytes);
        ASSERT_FALSE(image) << at;
        EXPECT_EQ(image.error().code, DWORD{ERROR_BAD_EXE_FORMAT}) << at;
    }
}

} // namespace
} // namespace tervane::pe
