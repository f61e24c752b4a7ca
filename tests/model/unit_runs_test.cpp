#include "model/unit_runs.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tervane {
namespace {

std::vector<std::uint8_t> LittleEndian(const std::u16string& text) {
    std::vector<std::uint8_t> bytes;
    for (char16_t c : text) {
        bytes.push_back(static_cast<std::uint8_t>(c & 0xFF));
        bytes.push_back(static_cast<std::uint8_t>(c >> 8));
    }
    return bytes;
}

// A unit planted at places on both sides of the eight-unit blocks, in texts
// of filler that looks like the units that matter in one byte only.
struct Planted {
    char16_t unit;
    bool stops;
};

TEST(UnitRuns, EscapeRunStopsAtTheFirstUnitEscapingLooksAt) {
    const Planted planted[] = {
        {0, true},       {8, true},       {10, true},      {12, true},      {13, true},
        {u'&', true},    {u'\\', true},   {9, false},      {11, false},     {u'%', false},
        {0x2600, false}, {0x5C00, false}, {0xFF26, false}, {0x805C, false}, {0x0D0D, false},
    };
    for (const Planted& p : planted) {
        for (std::size_t at : {0u, 1u, 7u, 8u, 9u, 15u, 16u, 23u, 30u}) {
            std::u16string text(31, u'a');
            text[3] = 0x2600; // '&' in the high byte
            text[at] = p.unit;
            const auto bytes = LittleEndian(text);
            const std::size_t expected = p.stops ? at : text.size();
            EXPECT_EQ(PlainEscapeRun(bytes.data(), text.size()), expected)
                << std::hex << static_cast<unsigned>(p.unit) << " at " << std::dec << at;
            // Cut before the unit, the run is the whole text.
            EXPECT_EQ(PlainEscapeRun(bytes.data(), at), at);
        }
    }
}

TEST(UnitRuns, UnescapeRunStopsAtBackslashOrPercent) {
    const Planted planted[] = {
        {u'\\', true},   {u'%', true},    {u'&', false},   {0, false},
        {0x2500, false}, {0x5C25, false}, {0xFF5C, false},
    };
    for (const Planted& p : planted) {
        for (std::size_t at : {0u, 6u, 7u, 8u, 15u, 16u, 17u, 24u}) {
            std::u16string text(25, u'x');
            text[at] = p.unit;
            const std::size_t expected = p.stops ? at : text.size();
            EXPECT_EQ(PlainUnescapeRun(text.data(), text.size()), expected)
                << std::hex << static_cast<unsigned>(p.unit) << " at " << std::dec << at;
        }
    }
    EXPECT_EQ(PlainUnescapeRun(u"", 0), 0u);
}

TEST(UnitRuns, RunWithoutStopsAtAnyOfItsThreeUnits) {
    struct Case {
        char16_t a, b, c;
        char16_t unit;
        bool stops;
    };
    const Case cases[] = {
        {u'\\', u'%', u'&', u'&', true},    {u'\\', u'%', u'&', u'%', true},
        {u'\\', u'\\', u'&', u'%', false},  {u'\\', u'\\', u'&', u'&', true},
        {u'\\', u'%', u'%', u'&', false},   {u'\\', u'%', u'&', 0x2600, false},
        {u'\\', u'%', u'&', 0x265C, false},
    };
    for (const Case& c : cases) {
        for (std::size_t at : {0u, 7u, 8u, 9u, 16u, 24u}) {
            std::u16string text(25, u'x');
            text[at] = c.unit;
            EXPECT_EQ(RunWithout(text.data(), text.size(), c.a, c.b, c.c),
                      c.stops ? at : text.size())
                << std::hex << static_cast<unsigned>(c.unit) << " at " << std::dec << at;
        }
    }
}

} // namespace
} // namespace tervane
