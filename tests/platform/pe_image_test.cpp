#include "platform/pe/pe_image.h"

#include <gtest/gtest.h>

#include "platform/win32/last_error.h"
#include "tests/support/fixtures.h"

namespace tervane::pe {
namespace {

TEST(PeImage, RejectsWhatIsNoImage) {
    struct Case {
        const char* what;
        std::vector<std::uint8_t> bytes;
        DWORD code;
    };
    auto good = test::ReadFile(test::FixturePath("sample", "x64"));
    std::vector<std::uint8_t> noPe(good.begin(), good.end());
    noPe[LoadU32LE(&noPe[0x3C])] = 'X';
    std::vector<std::uint8_t> farLfanew(good.begin(), good.end());
    StoreU32LE(&farLfanew[0x3C], 0xFFFFFFF0u);
    std::vector<std::uint8_t> badMagic(good.begin(), good.end());
    badMagic[LoadU32LE(&badMagic[0x3C]) + 24] = 0x99;
    const Case cases[] = {
        {"MZ only", {'M', 'Z'}, ERROR_BAD_EXE_FORMAT},
        {"no PE signature", noPe, ERROR_BAD_EXE_FORMAT},
        {"e_lfanew past the end", farLfanew, ERROR_BAD_EXE_FORMAT},
        {"unknown magic", badMagic, ERROR_BAD_EXE_FORMAT},
    };
    for (const Case& c : cases) {
        auto image = PeImage::Parse(c.bytes);
        ASSERT_FALSE(image) << c.what;
        EXPECT_EQ(image.error().code, c.code) << c.what;
    }
}

} // namespace
} // namespace tervane::pe
