#include "model/menu_records.h"

#include <functional>
#include <gtest/gtest.h>

#include "frame/diagnostics/exceptions.h"
#include "tests/model/menu_images.h"

namespace tervane {
namespace {

using test::MenuImage;
constexpr std::uint16_t kEnd = 0x80;

TEST(MenuRecords, TreesOfPiecesFromTemplates) {
    struct Case {
        const char* name;
        bool extended;
        std::function<void(MenuImage&)> build;
        std::vector<std::string> lines;
    };
    const Case cases[] = {
        // A plain separator is told by its empty text, not by its flags; a last
        // item with id 0 closes its menu only at the end of the data.
        {"ids, separator by text, id 0 before the end",
         false,
         [](MenuImage& m) {
             m.Plain(0x800, 65535, u"a")
                 .Plain(0, 65534, u"b")
                 .Plain(0, 5, u"")
                 .Plain(kEnd, 0, u"Z");
             m.Plain(kEnd, 0, u"End");
         },
         {"<menu id=\"1\">", "<item>[a]</item>", "<item id=\"65534\">[b]</item>", "<separator/>",
          "<item>[Z]</item>", "<item>[End]</item></menu>"}},
        {"empty pop-up text",
         false,
         [](MenuImage& m) { m.Popup(kEnd, u"").Plain(kEnd, 1, u"x"); },
         {"<menu id=\"1\">", "<item></item><menu>", "  <item id=\"1\">[x]</item></menu>",
          "  </menu>"}},
        {"extended",
         true,
         [](MenuImage& m) {
             m.Extended(0, 300, 0x81, u"&Edit", 7).Extended(0x800, 5, 0, u"ignored");
             m.Extended(0, 0xFFFF, 0, u"a").Extended(0, 0xFFFFFFFB, kEnd, u"Neg");
         },
         {"<menu id=\"1\">", "<item id=\"300\">{&}[Edit]</item><menu>", "  <separator/>",
          "  <item>[a]</item>", "  <item>[Neg]</item></menu>", "  </menu>"}},
    };
    for (const Case& c : cases) {
        MenuImage image(c.extended);
        c.build(image);
        EXPECT_EQ(test::Spell(image.Read()->items), c.lines) << c.name;
    }
}

TEST(MenuRecords, TrailingWordsAndHelpIdentifier) {
    MenuImage plain(false);
    plain.Popup(kEnd, u"File").Plain(kEnd, 100, u"Exit").Word(0).Word(0);
    auto menu = plain.Read();
    ASSERT_EQ(menu->items.size(), 2u);
    EXPECT_EQ(menu->items[1].trailingWords, 2);
    EXPECT_EQ(menu->items[1].children[1].flags, 0xFFFF); // the closing record

    // The help identifier stands behind the padding of the text.
    MenuImage extended(true);
    extended.Extended(0, 300, 0x81, u"&Edit", 0x12345678).Extended(0, 301, kEnd, u"Cut");
    EXPECT_EQ(extended.Read()->items[1].helpId, 0x12345678u);
}

TEST(MenuRecords, MalformedTemplatesAreCorruptedDocuments) {
    struct Case {
        const char* name;
        bool extended;
        std::function<void(MenuImage&)> build;
        long sizeChange;
    };
    const Case cases[] = {
        {"children never end", false, [](MenuImage& m) { m.Popup(kEnd, u"P").Plain(0, 1, u"a"); },
         0},
        {"no zero word", false, [](MenuImage& m) { m.Word(kEnd).Word(1).Word('a'); }, 0},
        {"size cuts the id", false, [](MenuImage& m) { m.Plain(kEnd, 1, u"a"); }, -5},
        {"size beyond the data", false, [](MenuImage& m) { m.Plain(kEnd, 1, u"a"); }, 10},
        {"no help id", true, [](MenuImage& m) { m.Extended(0, 1, 0x81, u"P"); }, -4},
        {"one deeper than the limit", false,
         [](MenuImage& m) {
             for (int i = 0; i <= kMaxMenuDepth; ++i)
                 m.Popup(kEnd, u"p");
             m.Plain(kEnd, 1, u"x");
         },
         0},
    };
    for (const Case& c : cases) {
        MenuImage image(c.extended);
        c.build(image);
        EXPECT_THROW(image.Read("1", c.sizeChange), CParserException) << c.name;
    }
    MenuImage deepest(false);
    for (int i = 0; i < kMaxMenuDepth; ++i)
        deepest.Popup(kEnd, u"p");
    EXPECT_NO_THROW(deepest.Plain(kEnd, 1, u"x").Read());
}

} // namespace
} // namespace tervane
