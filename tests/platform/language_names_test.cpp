#include <gtest/gtest.h>

#include "platform/locale/language_code_pages.h"

namespace tervane::locale {
namespace {

// Names as Windows reports them, found again without regard to case; a sort
// order's name answers to its bare part only where no locale has that name.
TEST(LanguageNames, BothWays) {
    const std::vector<std::pair<const char*, LANGID>> rows = {
        {"de-DE", 0x0407},        {"DE-de", 0x0407},  {"de", 0x0007},         {"es-ES", 0x0C0A},
        {"es-ES_tradnl", 0x040A}, {"en-029", 0x2409}, {"sr-Latn-RS", 0x241A}, {"zh-TW", 0x0404},
    };
    for (const auto& [name, language] : rows) {
        auto found = FindLanguageByName(name);
        ASSERT_TRUE(found) << name;
        EXPECT_EQ(found->language, language) << name;
    }
    for (const char* unknown : {"", "xx-XX", "de-", "de-DE-x"})
        EXPECT_FALSE(FindLanguageByName(unknown)) << unknown;
    EXPECT_STREQ(FindLanguageCodePages(0x0407)->name, "de-DE");
    EXPECT_STREQ(FindLanguageCodePages(0x7C92)->name, "ku-Arab-IQ");
}

} // namespace
} // namespace tervane::locale
