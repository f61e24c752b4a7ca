#include <gtest/gtest.h>

#include <string>

#include "host/wide_text.h"

namespace tervane {
namespace {

constexpr WideText kClose = WideText::Constant(u"</item>");

TEST(WideText, ReadsAsTheTextItWasMadeFromAndEndsInZero) {
    struct Case {
        WideText text;
        std::u16string expected;
    };
    const Case cases[] = {
        {WideText(), u""},
        {WideText(u"<item>"), u"<item>"},
        {kClose, u"</item>"},
        // A zero inside the text is kept: its size decides, not the zero.
        {WideText(std::u16string_view(u"a\0b", 3)), std::u16string(u"a\0b", 3)},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(c.text.str(), c.expected);
        EXPECT_EQ(c.text.size(), c.expected.size());
        EXPECT_EQ(c.text.data()[c.text.size()], u'\0');
        EXPECT_TRUE(c.text == c.expected);
    }
}

TEST(WideText, CopiesOutliveTheOriginal) {
    WideText copy;
    {
        const WideText original(u"<string id=\"17\">");
        copy = original;
    }
    const WideText moved = std::move(copy);
    EXPECT_EQ(moved.view(), u"<string id=\"17\">");
    EXPECT_TRUE(copy.empty()); // NOLINT: a moved-from text is empty
}

} // namespace
} // namespace tervane
