#include <gtest/gtest.h>

#include <map>

#include "tests/backward/round_trip.h"

namespace tervane {
namespace {

using test::ConversionMode;
using test::kTrailer;

std::string Text(const std::vector<std::uint8_t>& b, std::size_t& at) {
    std::u16string text;
    for (; b.at(at) | b.at(at + 1); at += 2)
        text += static_cast<char16_t>(b[at] | b[at + 1] << 8);
    at += 2;
    return Narrow(text);
}

// The texts of a rebuilt menu's items, in template order.
std::vector<std::string> ItemTexts(const std::vector<std::uint8_t>& b, bool extended) {
    std::vector<std::string> texts;
    for (std::size_t at = extended ? 8 : 4; at < b.size();) {
        if (extended) {
            const bool hasHelpId = b.at(at + 12) & 1;
            at += 14;
            texts.push_back(Text(b, at));
            at = ((at + 3) & ~std::size_t{3}) + (hasHelpId ? 4 : 0);
        } else {
            at += (b.at(at) & 0x10) ? 2 : 4;
            texts.push_back(Text(b, at));
        }
    }
    return texts;
}

struct MenuCase {
    const char* name;
    std::string menu;
    std::vector<std::pair<std::string, std::u16string>> changes;
    DWORD mode;
    std::map<int, std::string> texts; // changed texts by place in the template
    std::vector<std::string> messages;
    std::string error;
};

const std::u16string kLongest(256, u'm');
const std::string kEmptyFile = "Alert: There is no text between the opening and the closing tag "
                               "(menu resource  id = 101\ncontrol 'item').\n";
const std::string kEmptyOpen = "Alert: There is no text between the opening and the closing tag "
                               "(menu resource  id = 101\ncontrol 'item' id = '100').\n";

TEST(MenuRebuild, TranslatedItemsAndTheirChecks) {
    const MenuCase cases[] = {
        {"longer, accented, hotkeys and shortcuts",
         "101",
         {{"{&}[File]", u"{&}[Datei]"},
          {"{&}[Open...]<shortcut>[Ctrl]", u"[Ö]{&}[ffnen…]<shortcut>[Strg]"}},
         1,
         {{0, "&Datei"}, {1, "Ö&ffnen…\tStrg+O"}},
         {},
         ""},
        {"an '&' of the text doubled, a '%' kept",
         "101",
         {{"{&}[Help]", u"[R&D 100%]"}},
         1,
         {{8, "R&&D 100%"}},
         {},
         ""},
        {"a surplus hotkey removed in a final conversion",
         "101",
         {{"{&}[File]", u"{&}[Da]{&}[tei]"}},
         1,
         {{0, "&Datei"}},
         {},
         ""},
        {"a surplus hotkey kept in a preview",
         "101",
         {{"{&}[File]", u"{&}[Da]{&}[tei]"}},
         0,
         {{0, "&Da&tei"}},
         {},
         ""},
        {"a clash of hotkeys in one pop-up",
         "101",
         {{"{&}[Open...]", u"{&}[rOpen]"}},
         1,
         {{1, "&rOpen\tCtrl+O"}},
         {"Alert: Hotkey 'R' character has been duplicated(menu resource id = 101\ncontrol "
          "'item' id = '100',control 'item').\n"},
         ""},
        {"the same hotkey in two pop-ups",
         "101",
         {{"{&}[More]", u"{&}[Help]"}},
         1,
         {{4, "&Help"}},
         {},
         ""},
        {"a clash of shortcuts across pop-ups",
         "101",
         {{"[Alt]{+}[F4]", u"[Ctrl]{+}[O]"}},
         1,
         {{7, "E&xit\tCtrl+O"}},
         {"Alert: Shortcut key 'Ctrl+O' string has been duplicated(menu resource id = "
          "101\ncontrol 'item' id = '100',control 'item').\n"},
         ""},
        {"a hotkey mark at the end of a label",
         "101",
         {{"{&}[File]", u"[Datei]{&}"}},
         1,
         {{0, "Datei&"}},
         {"Alert: Invalid hotkey character at the end of text(menu resource id = 101\ncontrol "
          "'item').\n"},
         ""},
        {"an empty pop-up in a final conversion",
         "101",
         {{"{&}[File]", u""}},
         1,
         {{0, ""}},
         {kEmptyFile},
         ""},
        {"an empty pop-up in a preview",
         "101",
         {{"{&}[File]", u""}},
         0,
         {{0, "Click here to view pop-up Menu"}},
         {kEmptyFile},
         ""},
        {"an empty nested item in a preview",
         "101",
         {{"{&}[Open...]<shortcut>[Ctrl]{+}[O]</shortcut>", u""}},
         0,
         {{1, ""}},
         {kEmptyOpen},
         ""},
        {"an empty shortcut alone counts as empty",
         "101",
         {{"{&}[Open...]<shortcut>[Ctrl]{+}[O]", u"<shortcut>"}},
         1,
         {{1, "\t"}},
         {kEmptyOpen},
         ""},
        {"at the limit",
         "101",
         {{"{&}[Help]", u"[" + kLongest + u"]"}},
         1,
         {{8, Narrow(kLongest)}},
         {},
         ""},
        {"one beyond, an error in a final conversion",
         "101",
         {{"{&}[Help]", u"[" + kLongest + u"x]"}},
         1,
         {},
         {},
         "Error: Length of translated text is longer than the allowed 256 characters (menu id "
         "= 101 ,control name = 'item' & id = 200).\n" +
             kTrailer},
        {"an extended menu",
         "102",
         {{"[Cu]{&}[t]<shortcut>[Ctrl]{+}[Shift]",
           u"[Aus]{&}[schneiden]<shortcut>[Strg]{+}[Umschalt]"}},
         1,
         {{1, "Aus&schneiden\tStrg+Umschalt+X"}},
         {},
         ""},
    };
    for (const MenuCase& c : cases) {
        SCOPED_TRACE(c.name);
        ConversionMode mode(c.mode);
        test::SourceFile source(test::FixturePath("fwd_menus", "x64"));
        auto& menu = static_cast<CMenuResource&>(source.Find(4, c.menu));
        auto expected = ItemTexts(source.BytesOf(menu), menu.IsExtended());
        test::Merge(menu, test::Stream(menu, c.changes));
        if (!c.error.empty()) {
            EXPECT_EQ(test::RebuildError(menu), c.error);
            continue;
        }
        const auto written = test::Rebuild(menu);
        ASSERT_EQ(written.size(), 1u);
        for (const auto& [place, text] : c.texts)
            expected.at(static_cast<std::size_t>(place)) = text;
        EXPECT_EQ(ItemTexts(written[0].bytes, menu.IsExtended()), expected);
        EXPECT_EQ(mode.Messages(), c.messages);
    }
}

} // namespace
} // namespace tervane
