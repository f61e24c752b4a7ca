#include <functional>
#include <gtest/gtest.h>

#include "frame/diagnostics/exceptions.h"
#include "label/grammars/label_parser.h"
#include "model/menu_records.h"
#include "model/menu_resource.h"
#include "model/menu_text.h"
#include "tests/model/test_images.h"

// Menu templates built in code, and a menu's records spelt out one a line.
namespace tervane::test {

struct MenuImage {
    // The header: version 0 and header size 0, or version 1, offset 4 and help id 0.
    explicit MenuImage(bool extended) : extended(extended) {
        Word(extended).Word(extended ? 4 : 0);
        if (extended)
            b.U32(0);
    }
    MenuImage& Word(std::uint16_t w) {
        b.U16(w);
        return *this;
    }
    MenuImage& Plain(std::uint16_t flags, std::uint16_t id, const std::u16string& text) {
        b.U16(flags).U16(id).Text(text);
        return *this;
    }
    MenuImage& Popup(std::uint16_t flags, const std::u16string& text) {
        b.U16(flags | 0x10).Text(text);
        return *this;
    }
    MenuImage& Extended(std::uint32_t type, std::uint32_t id, std::uint16_t resInfo,
                        const std::u16string& text, std::uint32_t helpId = 0) {
        b.U32(type).U32(0).U32(id).U16(resInfo).Text(text).Align();
        if (resInfo & 1)
            b.U32(helpId);
        return *this;
    }
    // The menu read with the header fields the enumeration would set.
    std::unique_ptr<CMenuResource> Read(const std::string& id = "1", long sizeChange = 0) const {
        auto menu = std::make_unique<CMenuResource>();
        menu->identifierText = id;
        menu->size = static_cast<DWORD>(static_cast<long>(b.bytes.size()) + sizeChange);
        menu->extendedVersion = extended ? 1 : 0;
        CMenuCommand().Execute(b.bytes, menu.get());
        return menu;
    }

    bool extended;
    Bytes b;
};

// One line a record, depth first, two blanks a level.
inline void Spell(const MenuItemRecord& record, int depth, std::vector<std::string>& out) {
    out.push_back(std::string(static_cast<std::size_t>(depth) * 2, ' ') + Spell(record.pieces));
    for (const MenuItemRecord& child : record.children)
        Spell(child, depth + 1, out);
}

inline std::vector<std::string> Spell(const std::vector<MenuItemRecord>& items) {
    std::vector<std::string> out;
    for (const MenuItemRecord& record : items)
        Spell(record, 0, out);
    return out;
}

} // namespace tervane::test

namespace tervane {
namespace {

using test::MenuImage;
constexpr std::uint16_t kEnd = 0x80;

// The fixtures' document shows the usual texts; these are the odd ones.
TEST(MenuText, PiecesOfItemTexts) {
    const std::pair<std::u16string, std::string> cases[] = {
        {u"Cut\t", "[Cut]<shortcut></shortcut>"},
        {u"Go\tCtrl++,B", "[Go]<shortcut>[Ctrl]{+}[+]{,}[B]</shortcut>"},
        // A second tab belongs to the shortcut's text.
        {u"a\tb\tc", "[a]<shortcut>[b\\tc]</shortcut>"},
    };
    CLabelParser parser;
    for (const auto& [text, spelt] : cases) {
        MenuItemRecord record;
        record.parser = &parser;
        AnalyseMenuText(record, text);
        EXPECT_EQ(test::Spell(record.pieces), spelt) << Narrow(text);
    }
}

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
        // The separator that ends a pop-up closes it; the items behind are the menu's.
        {"pop-up ending in a separator, items behind",
         false,
         [](MenuImage& m) {
             m.Popup(0, u"File").Plain(0, 1, u"Open").Plain(kEnd, 0, u"");
             m.Plain(0, 2, u"Help").Plain(kEnd, 3, u"Exit");
         },
         {"<menu id=\"1\">", "<item>[File]</item><menu>", "  <item id=\"1\">[Open]</item>",
          "  <separator/></menu>", "<item id=\"2\">[Help]</item>",
          "<item id=\"3\">[Exit]</item></menu>"}},
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

// Item, pop-up, separator and closing tags, and the menu's own, keep the
// words of their texts.
TEST(MenuRecords, TagsKeepTheWordsOfTheirTexts) {
    std::function<void(const MenuItemRecord&)> expectKept = [&](const MenuItemRecord& record) {
        test::ExpectKeptWords(record.pieces);
        for (const MenuItemRecord& child : record.children)
            expectKept(child);
    };
    MenuImage image(true);
    image.Extended(0, 5, 1, u"&File")
        .Extended(0, 0x7FFFFFFF, 0, u"Open\tCtrl+O")
        .Extended(0x800, 0, 0, u"")
        .Extended(0, 0xFFFF, 0x80, u"item id")
        .Extended(0, 9, 0x80, u"Help");
    for (const char* id : {"1", "separator", "/menu"}) {
        const auto menu = image.Read(id);
        ASSERT_FALSE(menu->items.empty());
        for (const MenuItemRecord& record : menu->items)
            expectKept(record);
    }
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

// A pop-up in a pop-up, a separator, a shortcut, an item behind a closed pop-up.
std::unique_ptr<CMenuResource> SourceMenu(const std::string& id) {
    test::MenuImage image(false);
    image.Popup(0, u"&File").Plain(0, 10, u"Open\tCtrl+O").Plain(0, 0, u"");
    image.Popup(0x80, u"Recent").Plain(0x80, 11, u"one").Plain(0x80, 20, u"Help");
    return image.Read(id);
}

// The records' pieces in document order, texts "translated" to upper case.
void Flatten(const MenuItemRecord& record, CPieceStream& out) {
    for (const auto& piece : record.pieces) {
        out.push_back(ClonePiece(*piece));
        if (auto* text = dynamic_cast<CTextLabelPiece*>(out.back().get())) {
            std::u16string upper = text->text.str();
            for (char16_t& c : upper)
                c = (c >= u'a' && c <= u'z') ? static_cast<char16_t>(c - 32) : c;
            text->text = upper;
        }
    }
    for (const MenuItemRecord& child : record.children)
        Flatten(child, out);
}

const std::vector<std::string> kTranslated = {
    "<menu id=\"1\">",
    "<item>{&}[FILE]</item><menu>",
    "<item id=\"10\">[OPEN]<shortcut>[CTRL]{+}[O]</shortcut></item>",
    "<separator/>",
    "<item>[RECENT]</item><menu>",
    "<item id=\"11\">[ONE]</item></menu>",
    "</menu>",
    "<item id=\"20\">[HELP]</item></menu>",
};

TEST(MenuResource, ExtractAndMergeByPosition) {
    CPieceStream stream;
    stream.push_back(MakeOpenTag("menus", "<menus>"));
    for (const char* id : {"1", "NAMED"}) {
        auto menu = SourceMenu(id);
        for (const MenuItemRecord& record : menu->items)
            Flatten(record, stream);
    }
    stream.push_back(MakeCloseTag("menus", "</menus>"));

    CMenuResource first;
    first.ExtractPieces(stream);
    EXPECT_EQ(test::Spell(first.items), kTranslated);
    // The group's tag stays at the head, the next menu's root behind it.
    ASSERT_GE(stream.size(), 2u);
    EXPECT_EQ(TagOf(*stream[1])->tagText, u"<menu id=\"NAMED\">");

    auto source = SourceMenu("1");
    source->MergePieces(first);
    std::vector<std::string> after = test::Spell(source->items);
    EXPECT_EQ(after[5], "    <item id=\"11\">[ONE]</item></menu>");
    for (std::string& line : after)
        line.erase(0, line.find_first_not_of(' '));
    EXPECT_EQ(after, kTranslated);
}

} // namespace
} // namespace tervane
