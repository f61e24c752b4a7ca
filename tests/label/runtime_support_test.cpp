// The lead-byte classifier of narrow input.
#include <gtest/gtest.h>

#include <vector>

#include "label/runtime/rcparsedbcsinfo.h"

namespace tervane::test {
namespace {

TEST(LeadByteClassifier, ModesAndTheirRanges) {
    struct Case {
        std::uint32_t mode;
        std::vector<std::uint8_t> lead;
        std::vector<std::uint8_t> single;
    };
    const std::vector<Case> cases = {
        {1, {}, {0x00, 0x81, 0xFE, 0xFF}},
        {2, {0x81, 0x9F, 0xE0, 0xFC}, {0x80, 0xA0, 0xDF, 0xFD, 0x41}},
        {3, {0xA1, 0xFE}, {0xA0, 0xFF, 0x81}},
        {4, {0x81, 0xFE}, {0x80, 0xFF}},
        {5, {0x81, 0xC0, 0xFE}, {0x80, 0xFF, 0x20}},
        {6, {}, {0x81, 0xA1, 0xFE}},
        // The process's code page is UTF-8, which has no lead bytes.
        {0, {}, {0x81, 0xC3, 0xE0, 0xFE}},
    };
    for (const Case& c : cases) {
        rcparsedbcsinfo info(c.mode);
        for (std::uint8_t b : c.lead)
            EXPECT_TRUE(info.isLeadByte(b)) << c.mode << " " << int(b);
        for (std::uint8_t b : c.single)
            EXPECT_FALSE(info.isLeadByte(b)) << c.mode << " " << int(b);
    }
    // An NT platform answers GetVersionExA, so the process asks the platform.
    EXPECT_EQ(rcparsedbcsinfo::startupMode(), 0u);
}

} // namespace
} // namespace tervane::test
