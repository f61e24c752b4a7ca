#include "platform/pe/pe_image.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <vector>

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

// A view stands for a copy only where the file holds every byte of it: the
// zero tail of a section and ranges out of any section are no view.
TEST(PeImage, ViewsOnlyWhatTheFileHolds) {
    const auto good = test::ReadFile(test::FixturePath("sample", "x64"));
    std::vector<std::uint8_t> bytes(good.begin(), good.end());
    // The last section gets a mapped size beyond its raw data: a zero tail.
    const std::uint32_t pe = LoadU32LE(&bytes[0x3C]);
    const std::uint16_t count = static_cast<std::uint16_t>(bytes[pe + 6] | bytes[pe + 7] << 8);
    const std::uint16_t optional = static_cast<std::uint16_t>(bytes[pe + 20] | bytes[pe + 21] << 8);
    const std::size_t last = pe + 24 + optional + (count - 1) * 40u;
    const std::uint32_t raw = LoadU32LE(&bytes[last + 16]);
    const std::uint32_t grown = raw + 0x100;
    for (int i = 0; i < 4; ++i)
        bytes[last + 8 + i] = static_cast<std::uint8_t>(grown >> (8 * i));
    auto image = PeImage::Parse(bytes);
    ASSERT_TRUE(image);
    const SectionHeader& s = image->Sections().back();
    ASSERT_EQ(s.sizeOfRawData, raw);
    const std::uint32_t va = s.virtualAddress;

    struct Case {
        const char* what;
        std::uint32_t rva, size;
        bool view, copy;
    };
    const Case cases[] = {
        {"whole raw data", va, raw, true, true},
        {"empty at the raw end", va + raw, 0, true, true},
        {"last raw byte", va + raw - 1, 1, true, true},
        {"one byte into the zero tail", va + raw - 1, 2, false, true},
        {"the zero tail alone", va + raw, 0x100, false, true},
        {"past the mapped size", va + raw, 0x101, false, false},
        {"in no section", 0, 1, false, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        const std::optional<Bytes> view = image->ViewRva(c.rva, c.size);
        const auto copy = image->ReadRva(c.rva, c.size);
        ASSERT_EQ(view.has_value(), c.view);
        ASSERT_EQ(copy.has_value(), c.copy);
        if (!view)
            continue;
        EXPECT_TRUE(std::equal(view->begin(), view->end(), copy->begin(), copy->end()));
        const Bytes file = image->FileBytes();
        EXPECT_TRUE(view->empty() || (view->data() >= file.data() &&
                                      view->data() + view->size() <= file.data() + file.size()));
    }
}

} // namespace
} // namespace tervane::pe
