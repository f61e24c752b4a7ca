#include "platform/locale/locale_info.h"

#include <gtest/gtest.h>

#include <string>

#include "platform/win32/last_error.h"

namespace {

struct Expected {
    LCID locale;
    int ansi;
    int oem;
};

std::string Ask(LCID locale, LCTYPE type) {
    char buffer[6] = {'x', 'x', 'x', 'x', 'x', 'x'};
    SetLastError(0);
    const int written = GetLocaleInfoA(locale, type, buffer, sizeof buffer);
    if (written == 0)
        return "fail " + std::to_string(GetLastError());
    EXPECT_EQ(buffer[written - 1], '\0');
    EXPECT_EQ(static_cast<std::size_t>(written), std::char_traits<char>::length(buffer) + 1);
    return buffer;
}

TEST(LocaleInfo, CodePagesOfKnownLanguages) {
    const Expected cases[] = {
        {0x0407, 1252, 850}, {0x0401, 1256, 720}, {0x042A, 1258, 1258},
        {0x0439, 0, 1},      {0x0011, 932, 932},  {0x7C04, 950, 950},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.locale);
        EXPECT_EQ(Ask(c.locale, LOCALE_IDEFAULTANSICODEPAGE), std::to_string(c.ansi));
        EXPECT_EQ(Ask(c.locale, LOCALE_IDEFAULTCODEPAGE), std::to_string(c.oem));
    }
}

TEST(LocaleInfo, NeutralAliasesAndUnknownIdentifiers) {
    const std::pair<LCID, std::string> cases[] = {
        {0x0000, "1252"}, // the user's locale, en-US here
        {LOCALE_INVARIANT, "1252"}, {0x0001 | (0x3F << 10), "fail 87"}, // no such sublanguage
        {0x0200, "fail 87"},     // LANG_NEUTRAL with a sublanguage that is not an alias
        {0x00010409, "fail 87"}, // a sort that the system never asks for
    };
    for (const auto& [locale, expected] : cases) {
        SCOPED_TRACE(locale);
        EXPECT_EQ(Ask(locale, LOCALE_IDEFAULTANSICODEPAGE), expected);
    }
    EXPECT_EQ(Ask(LOCALE_INVARIANT, LOCALE_IDEFAULTCODEPAGE), "437");
    EXPECT_EQ(Ask(0x0409, 0x0002), "fail 1004");
    EXPECT_EQ(Ask(0x0411, LOCALE_IDEFAULTANSICODEPAGE | LOCALE_NOUSEROVERRIDE), "932");
}

} // namespace
