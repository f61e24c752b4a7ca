#include "model/unit_runs.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tervane {
namespace {

// Each scan against a loop over single units: one unit planted on both sides
// of the eight-unit blocks, in filler that looks like the units that matter in
// one byte only, and the text cut just before it.
TEST(UnitRuns, ScansStopWhereAUnitByUnitLoopStops) {
    const auto first = [](std::u16string_view text, std::u16string_view stops) {
        const std::size_t at = text.find_first_of(stops);
        return at == std::u16string_view::npos ? text.size() : at;
    };
    const std::u16string escapeStops(u"\0\b\n\f\r&\\", 7);
    const char16_t planted[] = {0,     8,    9,      10,     11,     12,     13,     u'&',
                                u'\\', u'%', 0x2600, 0x5C00, 0x2500, 0xFF26, 0x805C, 0x0D0D};
    for (const char16_t unit : planted) {
        for (std::size_t at : {0u, 1u, 7u, 8u, 9u, 15u, 16u, 23u, 30u}) {
            std::u16string text(31, u'a');
            text[3] = 0x2600;
            text[at] = unit;
            std::vector<std::uint8_t> bytes;
            for (char16_t c : text)
                bytes.insert(bytes.end(), {static_cast<std::uint8_t>(c & 0xFF),
                                           static_cast<std::uint8_t>(c >> 8)});
            const std::u16string_view view(text);
            for (std::size_t count : {text.size(), at}) {
                const std::u16string_view cut = view.substr(0, count);
                SCOPED_TRACE(testing::Message() << std::hex << unsigned(unit) << std::dec << " at "
                                                << at << " of " << count);
                EXPECT_EQ(PlainEscapeRun(bytes.data(), count), first(cut, escapeStops));
                EXPECT_EQ(PlainUnescapeRun(text.data(), count), first(cut, u"\\%"));
                EXPECT_EQ(RunWithout(text.data(), count, u'\\', u'%', u'&'), first(cut, u"\\%&"));
                EXPECT_EQ(RunWithout(text.data(), count, u'&', u'&', u'\\'), first(cut, u"&\\"));
            }
        }
    }
}

} // namespace
} // namespace tervane
