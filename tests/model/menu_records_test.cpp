#include "model/menu_records.h"

#include <functional>
#include <gtest/gtest.h>

#include "frame/diagnostics/exceptions.h"
#include "tests/model/menu_images.h"

namespace tervane {
namespace {

using test::MenuImage;

constexpr std::uint16_t kEnd = 0x80;

struct TreeCase {
    const char* name;
    bool extended;
    std::function<void(MenuImage&)> build;
    std::vector<std::string> lines;
};

TEST(MenuRecords, TreesOfPiecesFromTemplates) {
    const TreeCase cases[] = {
        {"one pop-up",
         false,
         [](MenuImage& m) { m.PlainPopup(kEnd, u"File").Plain(kEnd, 100, u"Exit"); },
         {"<menu id=\"1\">", "<item>[File]</item><menu>", "  <item id=\"100\">[Exit]</item></menu>",
          "  </menu>"}},
        {"separator last in its pop-up",
         false,
         [](MenuImage& m) { m.PlainPopup(kEnd, u"P").Plain(0, 1, u"a").Plain(kEnd, 0, u""); },
         {"<menu id=\"1\">", "<item>[P]</item><menu>", "  <item id=\"1\">[a]</item>",
          "  <separator/></menu>", "  </menu>"}},
        // A separator is told by its empty text, not by its flags.
        {"no pop-ups",
         false,
         [](MenuImage& m) { m.Plain(0x800, 1, u"").Plain(0, 2, u"b").Plain(kEnd, 3, u"c"); },
         {"<menu id=\"1\">", "<separator/>", "<item id=\"2\">[b]</item>",
          "<item id=\"3\">[c]</item></menu>"}},
        {"last item with id 0 before the end",
         false,
         [](MenuImage& m) { m.Plain(kEnd, 0, u"Zero").Plain(kEnd, 0, u"End"); },
         {"<menu id=\"1\">", "<item>[Zero]</item>", "<item>[End]</item></menu>"}},
        {"identifiers at the 16-bit edges",
         false,
         [](MenuImage& m) {
             m.Plain(0, 65535, u"a")
                 .Plain(0, 65534, u"b")
                 .Plain(0, 0x8000, u"c")
                 .Plain(kEnd, 1, u"d");
         },
         {"<menu id=\"1\">", "<item>[a]</item>", "<item id=\"65534\">[b]</item>",
          "<item id=\"32768\">[c]</item>", "<item id=\"1\">[d]</item></menu>"}},
        {"empty pop-up text",
         false,
         [](MenuImage& m) { m.PlainPopup(kEnd, u"").Plain(kEnd, 1, u"x"); },
         {"<menu id=\"1\">", "<item></item><menu>", "  <item id=\"1\">[x]</item></menu>",
          "  </menu>"}},
        {"three pop-ups deep",
         false,
         [](MenuImage& m) {
             m.PlainPopup(0, u"A")
                 .PlainPopup(kEnd, u"B")
                 .PlainPopup(kEnd, u"C")
                 .Plain(kEnd, 7, u"leaf")
                 .Plain(kEnd, 8, u"&Help");
         },
         {"<menu id=\"1\">", "<item>[A]</item><menu>", "  <item>[B]</item><menu>",
          "    <item>[C]</item><menu>", "      <item id=\"7\">[leaf]</item></menu>",
          "      </menu>", "    </menu>", "<item id=\"8\">{&}[Help]</item></menu>"}},
        {"extended pop-up with separator and identifiers",
         true,
         [](MenuImage& m) {
             m.Extended(0, 300, 0x81, u"&Edit", 7)
                 .Extended(0, 301, 0, u"Cut\tCtrl+X")
                 .Extended(0x800, 5, 0, u"ignored")
                 .Extended(0, 0xFFFF, 0, u"a")
                 .Extended(0, 0xFFFFFFFB, kEnd, u"Neg");
         },
         {"<menu id=\"1\">", "<item id=\"300\">{&}[Edit]</item><menu>",
          "  <item id=\"301\">[Cut]<shortcut>[Ctrl]{+}[X]</shortcut></item>", "  <separator/>",
          "  <item>[a]</item>", "  <item>[Neg]</item></menu>", "  </menu>"}},
        {"extended without pop-ups",
         true,
         [](MenuImage& m) { m.Extended(0, 1, 0, u"a").Extended(0, 2, kEnd, u"b"); },
         {"<menu id=\"1\">", "<item id=\"1\">[a]</item>", "<item id=\"2\">[b]</item></menu>"}},
    };
    for (const TreeCase& c : cases) {
        MenuImage image(c.extended);
        c.build(image);
        auto menu = test::ReadMenu(image, c.extended);
        EXPECT_EQ(test::Spell(menu->items), c.lines) << c.name;
    }
}

TEST(MenuRecords, FieldsKeptForTheWayBack) {
    MenuImage plain(false);
    plain.PlainPopup(kEnd, u"File").Plain(kEnd, 100, u"Exit").Word(0).Word(0);
    auto menu = test::ReadMenu(plain, false);
    ASSERT_EQ(menu->items.size(), 2u);
    const MenuItemRecord& root = menu->items[0];
    EXPECT_EQ(root.flags, 0xFFFF);
    EXPECT_EQ(root.type, 0xFFFFFFFFu);
    const MenuItemRecord& file = menu->items[1];
    EXPECT_EQ(file.flags, 0x90);
    EXPECT_EQ(file.id, 0xFFFF);
    EXPECT_EQ(file.text, u"File");
    EXPECT_EQ(file.trailingWords, 2);
    ASSERT_EQ(file.children.size(), 2u);
    EXPECT_EQ(file.children[0].id, 100);
    EXPECT_EQ(file.children[1].flags, 0xFFFF); // the closing record
    EXPECT_EQ(file.children[0].parser, menu->parser.get());

    // The help identifier stands behind the text's padding.
    MenuImage extended(true);
    extended.Extended(0x4000, 300, 0x81, u"&Edit", 0x12345678).Extended(0, 301, kEnd, u"Cut");
    auto ex = test::ReadMenu(extended, true);
    ASSERT_EQ(ex->items.size(), 2u);
    const MenuItemRecord& edit = ex->items[1];
    EXPECT_EQ(edit.type, 0x4000u);
    EXPECT_EQ(edit.itemId, 300u);
    EXPECT_EQ(edit.resInfo, 0x81);
    EXPECT_EQ(edit.helpId, 0x12345678u);
    EXPECT_EQ(edit.extendedText, u"&Edit");
    EXPECT_EQ(edit.children[0].helpId, 0xFFFFFFFFu);
    EXPECT_EQ(edit.trailingWords, 0);
}

struct CorruptCase {
    const char* name;
    bool extended;
    std::function<void(MenuImage&)> build;
    long sizeChange; // added to the data's size for the resource's size
};

TEST(MenuRecords, MalformedTemplatesAreCorruptedDocuments) {
    const CorruptCase cases[] = {
        {"pop-up whose children never end", false,
         [](MenuImage& m) { m.PlainPopup(kEnd, u"P").Plain(0, 1, u"a"); }, 0},
        {"text without its zero word", false, [](MenuImage& m) { m.Word(kEnd).Word(1).Word('a'); },
         0},
        {"item cut in its identifier", false, [](MenuImage& m) { m.Word(kEnd).Word(1).Text(u"a"); },
         -5},
        {"size beyond the data", false, [](MenuImage& m) { m.Plain(kEnd, 1, u"a"); }, 10},
        {"extended pop-up without its help identifier", true,
         [](MenuImage& m) { m.Extended(0, 1, 0x81, u"P").Extended(0, 2, kEnd, u"a"); }, -24},
        {"extended item cut in its header", true, [](MenuImage& m) { m.Dword(0).Dword(0).Word(1); },
         0},
        {"pop-ups one deeper than the limit", false,
         [](MenuImage& m) {
             for (int i = 0; i <= kMaxMenuDepth; ++i)
                 m.PlainPopup(kEnd, u"p");
             m.Plain(kEnd, 1, u"x");
         },
         0},
    };
    for (const CorruptCase& c : cases) {
        MenuImage image(c.extended);
        c.build(image);
        CMenuResource menu;
        menu.identifierText = "1";
        menu.size = static_cast<DWORD>(static_cast<long>(image.bytes.size()) + c.sizeChange);
        menu.extendedVersion = c.extended ? 1 : 0;
        try {
            CMenuCommand().Execute(image.bytes, &menu);
            ADD_FAILURE() << c.name;
        } catch (const CParserException& e) {
            EXPECT_STREQ(e.message, kCorruptedDocumentMessage) << c.name;
        }
    }

    // As deep as the limit allows still reads.
    MenuImage deepest(false);
    for (int i = 0; i < kMaxMenuDepth; ++i)
        deepest.PlainPopup(kEnd, u"p");
    deepest.Plain(kEnd, 1, u"x");
    EXPECT_NO_THROW(test::ReadMenu(deepest, false));
}

} // namespace
} // namespace tervane
