#include "platform/pe/resource_name_text.h"

#include <gtest/gtest.h>

namespace tervane::pe {
namespace {

TEST(ResourceNameText, ConversionsReplaceWhatIsIllFormed) {
    const std::pair<std::u16string, std::string> toUtf8[] = {
        {u"\xD83D\xDE00", "\xF0\x9F\x98\x80"},
        {u"\xDC00\x41", "\xEF\xBF\xBD\x41"},
        {u"\xD800\xD800\xDC00", "\xEF\xBF\xBD\xF0\x90\x80\x80"},
    };
    for (const auto& [wide, narrow] : toUtf8)
        EXPECT_EQ(Utf16ToUtf8(wide), narrow);
    const std::pair<std::string, std::u16string> toUtf16[] = {
        {"\xF0\x9F\x98\x80", u"\xD83D\xDE00"},
        {"\xC3", u"\xFFFD"},             // cut short at the end
        {"\xE2\x82\x41", u"\xFFFD\x41"}, // cut short before a letter
        {"\xC0\xAF", u"\xFFFD"},         // overlong
        {"\xED\xA0\x80", u"\xFFFD"},     // an encoded surrogate
        {"\xF4\x90\x80\x80", u"\xFFFD"}, // past U+10FFFF
    };
    for (const auto& [narrow, wide] : toUtf16)
        EXPECT_EQ(Utf8ToUtf16(narrow), wide) << narrow;
}

TEST(ResourceNameText, UpcaseWorksUnitByUnit) {
    const std::pair<std::u16string, std::u16string> cases[] = {
        {u"a_b-c \x00F6\x03C9\x0431", u"A_B-C \x00D6\x03A9\x0411"},
        {u"\x00DF", u"\x00DF"},             // ß has no one-unit capital
        {u"\xD801\xDC28", u"\xD801\xDC28"}, // beyond the basic plane: unchanged
    };
    for (const auto& [name, upper] : cases)
        EXPECT_EQ(UpcaseName(name), upper);
}

} // namespace
} // namespace tervane::pe
