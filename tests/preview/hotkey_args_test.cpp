// The pieces of the previewer that need no drawing: hotkey marks, the
// command line the filter writes, and the rounding of dialog units.
#include <gtest/gtest.h>
#include <stdexcept>

#include "preview/draw/dialog_scene.h"
#include "preview/draw/hotkey_text.h"
#include "preview/draw/previewer_run.h"

namespace tervane::preview {
namespace {

TEST(HotkeyText, MarksAsWindowsDrawsThem) {
    struct Case {
        std::u16string source;
        bool noPrefix;
        std::string shown;
        std::size_t begin, end;
    };
    const Case cases[] = {
        {u"&OK", false, "OK", 0, 1},
        {u"Save && E&xit", false, "Save & Exit", 8, 9},
        {u"a&&b", false, "a&b", 0, 0},
        {u"End&", false, "End", 0, 0},                     // a mark at the end shows nothing
        {u"&a&b", false, "ab", 1, 2},                      // the last mark wins
        {u"&\u00c4nderung", false, "\u00c4nderung", 0, 2}, // one character, two bytes
        {u"x&\U0001F600y", false, "x\U0001F600y", 1, 5},   // a surrogate pair is one character
        {u"Not &prefixed", true, "Not &prefixed", 0, 0},
        {u"", false, "", 0, 0},
    };
    for (const Case& c : cases) {
        const HotkeyText text = ParseHotkeys(c.source, c.noPrefix);
        EXPECT_EQ(text.text, c.shown);
        EXPECT_EQ(text.underlineBegin, c.begin) << c.shown;
        EXPECT_EQ(text.underlineEnd, c.end) << c.shown;
    }
}

TEST(PreviewerArguments, TheFiltersCommandLine) {
    struct Case {
        std::vector<std::string> words;
        std::string path, kind, id, side, dual, png;
        bool json;
    };
    const Case cases[] = {
        {{"?fp", "/t/a.exe", "?rd", "dialog", "?rid", "101", "?s", "?dual"},
         "/t/a.exe",
         "dialog",
         "101",
         "s",
         "dual",
         "",
         false},
        // No quotes: a path with blanks comes in words.
        {{"?fp", "/t/my", "app", "x.exe", "?rd", "menu", "?rid", "MAIN", "?d", "?notdual"},
         "/t/my app x.exe",
         "menu",
         "MAIN",
         "d",
         "notdual",
         "",
         false},
        {{"?fp", "a.dll", "?rd", "dialog", "?rid", "7", "--png", "o.png", "--fit-json"},
         "a.dll",
         "dialog",
         "7",
         "",
         "",
         "o.png",
         true},
    };
    for (const Case& c : cases) {
        const PreviewerOptions o = ParsePreviewerArguments(c.words);
        EXPECT_EQ(o.path, c.path);
        EXPECT_EQ(o.kind, c.kind);
        EXPECT_EQ(o.id, c.id);
        EXPECT_EQ(o.side, c.side);
        EXPECT_EQ(o.dualWord, c.dual);
        EXPECT_EQ(o.png, c.png);
        EXPECT_EQ(o.fitJson, c.json);
    }
    const std::vector<std::vector<std::string>> wrong = {
        {},
        {"?fp", "a.dll", "?rd", "dialog"},
        {"?fp", "a.dll", "?rd", "version", "?rid", "1"},
        {"?fp", "a.dll", "?rd", "dialog", "?rid", "1", "--png"},
        {"?fp", "a.dll", "?rd", "dialog", "?rid", "1", "2"},
    };
    for (const auto& words : wrong)
        EXPECT_THROW(ParsePreviewerArguments(words), std::invalid_argument);
}

TEST(DialogUnits, RoundAsMulDiv) {
    struct Case {
        int units, base, divisor, pixels;
    };
    const Case cases[] = {
        {7, 6, 4, 11}, {-7, 6, 4, -11}, {14, 13, 8, 23},      {1, 13, 8, 2},
        {0, 13, 8, 0}, {4, 6, 4, 6},    {32767, 6, 4, 49151},
    };
    for (const Case& c : cases)
        EXPECT_EQ(DialogUnitsToPixels(c.units, c.base, c.divisor), c.pixels)
            << c.units << " " << c.base << "/" << c.divisor;
}

TEST(ResourceNames, DigitsAreNumbers) {
    EXPECT_TRUE(ResourceNameFromText("101").IsOrdinal());
    EXPECT_EQ(ResourceNameFromText("65535").Ordinal(), 65535);
    EXPECT_FALSE(ResourceNameFromText("65536").IsOrdinal());
    EXPECT_FALSE(ResourceNameFromText("MAIN").IsOrdinal());
    EXPECT_FALSE(ResourceNameFromText("").IsOrdinal());
}

} // namespace
} // namespace tervane::preview
