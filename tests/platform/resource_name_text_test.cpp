#include "platform/pe/resource_name_text.h"

#include <gtest/gtest.h>

namespace tervane::pe {
namespace {

TEST(ResourceNameText, Utf16ToUtf8ReplacesUnpairedSurrogates) {
    const std::pair<std::u16string, std::string> cases[] = {
        {u"\x20AC", "\xE2\x82\xAC"},
        {u"\xD83D\xDE00", "\xF0\x9F\x98\x80"},
        {u"\xD800", "\xEF\xBF\xBD"},
        {u"\xDC00"
         u"A",
         "\xEF\xBF\xBD"
         "A"},
        {u"\xD800\xD800\xDC00", "\xEF\xBF\xBD\xF0\x90\x80\x80"},
    };
    for (const auto& [wide, narrow] : cases)
        EXPECT_EQ(Utf16ToUtf8(wide), narrow);
}

TEST(ResourceNameText, Utf8ToUtf16ReplacesInvalidSequences) {
    const std::pair<std::string, std::u16string> cases[] = {
        {"\xF0\x9F\x98\x80", u"\xD83D\xDE00"},
        {"\xC3", u"\xFFFD"}, // cut short at the end
        {"\xE2\x82"
         "A",
         u"\xFFFD"
         u"A"},                          // cut short before a letter
        {"\xC0\xAF", u"\xFFFD"},         // overlong
        {"\xED\xA0\x80", u"\xFFFD"},     // an encoded surrogate
        {"\xF4\x90\x80\x80", u"\xFFFD"}, // past U+10FFFF
        {"\x80"
         "A",
         u"\xFFFD"
         u"A"}, // a stray continuation byte
    };
    for (const auto& [narrow, wide] : cases)
        EXPECT_EQ(Utf8ToUtf16(narrow), wide) << narrow;
}

TEST(ResourceNameText, UpcaseWorksUnitByUnit) {
    const std::pair<std::u16string, std::u16string> cases[] = {
        {u"a_b-c 1", u"A_B-C 1"},
        {u"\x00F6\x00E9", u"\x00D6\x00C9"}, // ö é
        {u"\x00DF", u"\x00DF"},             // ß has no one-unit capital
        {u"\x03C9\x0431", u"\x03A9\x0411"}, // Greek and Cyrillic
        {u"\xD801\xDC28", u"\xD801\xDC28"}, // beyond the basic plane: unchanged
    };
    for (const auto& [name, upper] : cases)
        EXPECT_EQ(UpcaseName(name), upper);
}

} // namespace
} // namespace tervane::pe
