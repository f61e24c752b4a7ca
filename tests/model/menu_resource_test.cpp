#include "model/menu_resource.h"

#include <gtest/gtest.h>

#include "tests/model/menu_images.h"

namespace tervane {
namespace {

using test::MenuImage;

constexpr std::uint16_t kEnd = 0x80;

// A menu with a pop-up in a pop-up, a separator, a shortcut and an item
// that follows a closed pop-up.
std::unique_ptr<CMenuResource> SourceMenu(const std::string& id) {
    MenuImage image(false);
    image.PlainPopup(0, u"&File")
        .Plain(0, 10, u"&Open\tCtrl+O")
        .Plain(0, 0, u"")
        .PlainPopup(kEnd, u"Recent")
        .Plain(kEnd, 11, u"one")
        .Plain(kEnd, 20, u"&Help");
    return test::ReadMenu(image, false, id);
}

void Flatten(const MenuItemRecord& record, CLabelPieceList& out) {
    for (const auto& piece : record.pieces) {
        auto copy = ClonePiece(*piece);
        if (auto* text = dynamic_cast<CTextLabelPiece*>(copy.get()))
            for (char16_t& c : text->text)
                c = (c >= u'a' && c <= u'z') ? static_cast<char16_t>(c - 32) : c;
        out.push_back(std::move(copy));
    }
    for (const MenuItemRecord& child : record.children)
        Flatten(child, out);
}

// The document's pieces of two menus, with their texts "translated" to upper case.
CLabelPieceList Stream(const CMenuResource& first, const CMenuResource& second) {
    CLabelPieceList stream;
    stream.push_back(MakeOpenTag("resources", "<resources>"));
    stream.push_back(MakeOpenTag("menus", "<menus>"));
    for (const CMenuResource* menu : {&first, &second})
        for (const MenuItemRecord& record : menu->items)
            Flatten(record, stream);
    stream.push_back(MakeCloseTag("menus", "</menus>"));
    stream.push_back(MakeCloseTag("resources", "</resources>"));
    return stream;
}

std::vector<std::string> Unindented(std::vector<std::string> lines) {
    for (std::string& line : lines)
        line.erase(0, line.find_first_not_of(' '));
    return lines;
}

// The records of SourceMenu("1") as the stream gives them back, one a line.
const std::vector<std::string> kTranslated = {
    "<menu id=\"1\">",
    "<item>{&}[FILE]</item><menu>",
    "<item id=\"10\">{&}[OPEN]<shortcut>[CTRL]{+}[O]</shortcut></item>",
    "<separator/>",
    "<item>[RECENT]</item><menu>",
    "<item id=\"11\">[ONE]</item></menu>",
    "</menu>",
    "<item id=\"20\">{&}[HELP]</item></menu>",
};

TEST(MenuResource, ExtractPiecesTakesOneRecordForEachRecordOfTheSource) {
    auto first = SourceMenu("1");
    auto second = SourceMenu("NAMED");
    CLabelPieceList stream = Stream(*first, *second);

    CMenuResource one;
    one.ExtractPieces(stream);
    EXPECT_EQ(test::Spell(one.items), kTranslated);
    EXPECT_EQ(one.menuId, "1");
    // The group's tag stays at the head, the next menu's root behind it.
    ASSERT_GE(stream.size(), 3u);
    EXPECT_EQ(TagOf(*stream[1])->tagText, u"<menus>");
    EXPECT_EQ(TagOf(*stream[2])->tagText, u"<menu id=\"NAMED\">");

    CMenuResource two;
    two.ExtractPieces(stream);
    EXPECT_EQ(two.items.size(), kTranslated.size());
    EXPECT_EQ(two.menuId, "NAMED");
    ASSERT_EQ(stream.size(), 4u);
    EXPECT_EQ(TagOf(*stream[2])->tagText, u"</menus>");

    CMenuResource none;
    none.ExtractPieces(stream);
    EXPECT_TRUE(none.items.empty());
    EXPECT_EQ(stream.size(), 4u);
}

TEST(MenuResource, MergePiecesFollowsTheTreeDepthFirst) {
    auto source = SourceMenu("1");
    const std::vector<std::string> before = test::Spell(source->items);

    CMenuResource empty;
    source->MergePieces(empty);
    EXPECT_EQ(test::Spell(source->items), before);

    auto copy = SourceMenu("1");
    CLabelPieceList stream = Stream(*copy, *SourceMenu("2"));
    CMenuResource translated;
    translated.ExtractPieces(stream);
    source->MergePieces(translated);
    std::vector<std::string> after = test::Spell(source->items);
    EXPECT_EQ(Unindented(after), kTranslated);
    EXPECT_EQ(after[5], "    <item id=\"11\">[ONE]</item></menu>");
    // The fields of the source stay.
    EXPECT_EQ(source->items[1].children[0].id, 10);
}

} // namespace
} // namespace tervane
