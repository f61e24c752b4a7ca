#include <gtest/gtest.h>

#include <map>

#include "frame/diagnostics/exceptions.h"
#include "model/menu_resource.h"
#include "tests/backward/round_trip.h"

namespace tervane {
namespace {

using test::ConversionMode;

void Flatten(const std::vector<MenuItemRecord>& records, std::vector<const CLabelPieceList*>& out) {
    for (const MenuItemRecord& record : records) {
        out.push_back(&record.pieces);
        Flatten(record.children, out);
    }
}

// The menu's stream, with the records spelt as a key of changes spelt anew.
CLabelPieceList MenuStream(const CMenuResource& menu,
                           const std::map<std::string, std::u16string>& changes) {
    std::vector<const CLabelPieceList*> records;
    Flatten(menu.items, records);
    CLabelPieceList content;
    std::size_t used = 0;
    for (const CLabelPieceList* record : records) {
        auto change = changes.find(test::Spell(*record));
        CLabelPieceList pieces =
            change == changes.end() ? CloneList(*record) : test::Pieces(change->second);
        used += change != changes.end();
        for (auto& piece : pieces)
            content.push_back(std::move(piece));
    }
    EXPECT_EQ(used, changes.size()) << "a change names no record";
    return test::GroupStream(menu, std::move(content));
}

WORD Word(const std::vector<std::uint8_t>& b, std::size_t& at) {
    const WORD value = static_cast<WORD>(b.at(at) | b.at(at + 1) << 8);
    at += 2;
    return value;
}

std::string Text(const std::vector<std::uint8_t>& b, std::size_t& at) {
    std::u16string text;
    for (WORD unit; (unit = Word(b, at)) != 0;)
        text += static_cast<char16_t>(unit);
    return Narrow(text);
}

// The texts of a rebuilt menu's items, in template order.
std::vector<std::string> ItemTexts(const std::vector<std::uint8_t>& b, bool extended) {
    std::vector<std::string> texts;
    std::size_t at = extended ? 8 : 4;
    while (at < b.size()) {
        if (extended) {
            at += 12;
            const WORD resInfo = Word(b, at);
            texts.push_back(Text(b, at));
            at = (at + 3) & ~std::size_t{3};
            if (resInfo & 1)
                at += 4;
        } else {
            if ((Word(b, at) & 0x10) == 0)
                at += 2;
            texts.push_back(Text(b, at));
        }
    }
    return texts;
}

TEST(MenuRebuild, UnchangedPiecesGiveTheSourceMenu) {
    for (const char* fixture : {"fwd_menus", "bwd_menus"}) {
        for (const std::string& path : test::FixtureImages(fixture)) {
            test::SourceFile source(path);
            for (auto& resource : source.Resources()) {
                auto* menu = dynamic_cast<CMenuResource*>(resource.get());
                if (menu == nullptr)
                    continue;
                SCOPED_TRACE(path + " menu " + menu->identifierText);
                ConversionMode mode(1);
                test::Merge(*menu, MenuStream(*menu, {}));
                const auto written = test::Rebuild(*menu);
                ASSERT_EQ(written.size(), 1u);
                EXPECT_EQ(written[0].type, 4);
                const auto original = source.BytesOf(*menu);
                EXPECT_EQ(written[0].bytes, menu->IsExtended() ? test::Padded(original) : original);
                // A separator that ends its pop-up is no empty item either.
                EXPECT_EQ(mode.Messages(), std::vector<std::string>{});
            }
        }
    }
}

const std::string kTrailer = kVerificationTrailer;
const std::u16string kLongest(256, u'm');

struct MenuCase {
    const char* name;
    std::string menu;
    std::map<std::string, std::u16string> changes;
    DWORD mode;
    std::map<int, std::string> texts; // changed texts by place in the template
    std::vector<std::string> messages;
    std::string error;
};

const char* const kFile = "<item>{&}[File]</item><menu>";
const char* const kOpen = "<item id=\"100\">{&}[Open...]<shortcut>[Ctrl]{+}[O]</shortcut></item>";
const char* const kExit = "<item>[E]{&}[xit]<shortcut>[Alt]{+}[F4]</shortcut></item></menu>";
const char* const kHelp = "<item id=\"200\">{&}[Help]</item></menu>";
const char* const kMore = "<item>{&}[More]</item><menu>";

TEST(MenuRebuild, TranslatedItemsAndTheirChecks) {
    const MenuCase cases[] = {
        {"longer, accented, hotkeys and shortcuts",
         "101",
         {{kFile, u"<item>{&}[Datei]</item><menu>"},
          {kOpen, u"<item id=\"100\">[Ö]{&}[ffnen…]<shortcut>[Strg]{+}[O]</shortcut></item>"}},
         1,
         {{0, "&Datei"}, {1, "Ö&ffnen…\tStrg+O"}},
         {},
         ""},
        {"an '&' of the text doubled, a '%' kept",
         "101",
         {{kHelp, u"<item id=\"200\">[R&D 100%]</item></menu>"}},
         1,
         {{8, "R&&D 100%"}},
         {},
         ""},
        {"a surplus hotkey removed in a final conversion",
         "101",
         {{kFile, u"<item>{&}[Da]{&}[tei]</item><menu>"}},
         1,
         {{0, "&Datei"}},
         {},
         ""},
        {"a surplus hotkey kept in a preview",
         "101",
         {{kFile, u"<item>{&}[Da]{&}[tei]</item><menu>"}},
         0,
         {{0, "&Da&tei"}},
         {},
         ""},
        {"a clash of hotkeys in one pop-up",
         "101",
         {{kOpen, u"<item id=\"100\">{&}[rOpen]<shortcut>[Ctrl]{+}[O]</shortcut></item>"}},
         1,
         {{1, "&rOpen\tCtrl+O"}},
         {"Alert: Hotkey 'R' character has been duplicated(menu resource id = 101\ncontrol "
          "'item' id = '100',control 'item').\n"},
         ""},
        {"the same hotkey in two pop-ups",
         "101",
         {{kMore, u"<item>{&}[Help]</item><menu>"}},
         1,
         {{4, "&Help"}},
         {},
         ""},
        {"a clash of shortcuts across pop-ups",
         "101",
         {{kExit, u"<item>[E]{&}[xit]<shortcut>[Ctrl]{+}[O]</shortcut></item></menu>"}},
         1,
         {{7, "E&xit\tCtrl+O"}},
         {"Alert: Shortcut key 'Ctrl+O' string has been duplicated(menu resource id = "
          "101\ncontrol 'item' id = '100',control 'item').\n"},
         ""},
        {"a hotkey mark at the end of a label",
         "101",
         {{kFile, u"<item>[Datei]{&}</item><menu>"}},
         1,
         {{0, "Datei&"}},
         {"Alert: Invalid hotkey character at the end of text(menu resource id = 101\ncontrol "
          "'item').\n"},
         ""},
        {"an empty pop-up in a final conversion",
         "101",
         {{kFile, u"<item></item><menu>"}},
         1,
         {{0, ""}},
         {"Alert: There is no text between the opening and the closing tag (menu resource  id "
          "= 101\ncontrol 'item').\n"},
         ""},
        {"an empty pop-up in a preview",
         "101",
         {{kFile, u"<item></item><menu>"}},
         0,
         {{0, "Click here to view pop-up Menu"}},
         {"Alert: There is no text between the opening and the closing tag (menu resource  id "
          "= 101\ncontrol 'item').\n"},
         ""},
        {"an empty nested item in a preview stays empty",
         "101",
         {{kOpen, u"<item id=\"100\"></item>"}},
         0,
         {{1, ""}},
         {"Alert: There is no text between the opening and the closing tag (menu resource  id "
          "= 101\ncontrol 'item' id = '100').\n"},
         ""},
        {"a shortcut alone counts as empty",
         "101",
         {{kOpen, u"<item id=\"100\"><shortcut></shortcut></item>"}},
         1,
         {{1, "\t"}},
         {"Alert: There is no text between the opening and the closing tag (menu resource  id "
          "= 101\ncontrol 'item' id = '100').\n"},
         ""},
        {"at the limit",
         "101",
         {{kHelp, u"<item id=\"200\">[" + kLongest + u"]</item></menu>"}},
         1,
         {{8, Narrow(kLongest)}},
         {},
         ""},
        {"one beyond, cut in a preview",
         "101",
         {{kHelp, u"<item id=\"200\">[" + kLongest + u"x]</item></menu>"}},
         0,
         {{8, Narrow(kLongest)}},
         {},
         ""},
        {"one beyond, an error in a final conversion",
         "101",
         {{kHelp, u"<item id=\"200\">[" + kLongest + u"x]</item></menu>"}},
         1,
         {},
         {},
         "Error: Length of translated text is longer than the allowed 256 characters (menu id "
         "= 101 ,control name = 'item' & id = 200).\n" +
             kTrailer},
        {"an extended menu",
         "102",
         {{"<item id=\"301\">[Cu]{&}[t]<shortcut>[Ctrl]{+}[Shift]{+}[X]</shortcut></item>",
           u"<item id=\"301\">[Aus]{&}[schneiden]<shortcut>[Strg]{+}[Umschalt]{+}[X]</shortcut>"
           u"</item>"}},
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
        const auto before = ItemTexts(source.BytesOf(menu), menu.IsExtended());
        test::Merge(menu, MenuStream(menu, c.changes));
        if (!c.error.empty()) {
            try {
                test::Rebuild(menu);
                ADD_FAILURE() << "no error";
            } catch (const CVerificationException& e) {
                EXPECT_EQ(e.message, c.error);
            }
            continue;
        }
        const auto written = test::Rebuild(menu);
        ASSERT_EQ(written.size(), 1u);
        auto expected = before;
        for (const auto& [place, text] : c.texts)
            expected.at(static_cast<std::size_t>(place)) = text;
        EXPECT_EQ(ItemTexts(written[0].bytes, menu.IsExtended()), expected);
        EXPECT_EQ(mode.Messages(), c.messages);
    }
}

} // namespace
} // namespace tervane
