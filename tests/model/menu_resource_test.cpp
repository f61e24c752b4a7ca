#include "model/menu_resource.h"

#include <gtest/gtest.h>

#include "tests/model/menu_images.h"

namespace tervane {
namespace {

// A pop-up in a pop-up, a separator, a shortcut, an item behind a closed pop-up.
std::unique_ptr<CMenuResource> SourceMenu(const std::string& id) {
    test::MenuImage image(false);
    image.Popup(0, u"&File").Plain(0, 10, u"Open\tCtrl+O").Plain(0, 0, u"");
    image.Popup(0x80, u"Recent").Plain(0x80, 11, u"one").Plain(0x80, 20, u"Help");
    return image.Read(id);
}

// The records' pieces in document order, texts "translated" to upper case.
void Flatten(const MenuItemRecord& record, CLabelPieceList& out) {
    for (const auto& piece : record.pieces) {
        out.push_back(ClonePiece(*piece));
        if (auto* text = dynamic_cast<CTextLabelPiece*>(out.back().get()))
            for (char16_t& c : text->text)
                c = (c >= u'a' && c <= u'z') ? static_cast<char16_t>(c - 32) : c;
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
    CLabelPieceList stream;
    stream.push_back(MakeOpenTag("menus", "<menus>"));
    for (const char* id : {"1", "NAMED"}) {
        auto menu = SourceMenu(id);
        for (const MenuItemRecord& record : menu->items)
            Flatten(record, stream);
    }
    stream.push_back(MakeCloseTag("menus", "</menus>"));

    CMenuResource first, second, none;
    first.ExtractPieces(stream);
    EXPECT_EQ(test::Spell(first.items), kTranslated);
    // The group's tag stays at the head, the next menu's root behind it.
    ASSERT_GE(stream.size(), 2u);
    EXPECT_EQ(TagOf(*stream[1])->tagText, u"<menu id=\"NAMED\">");
    second.ExtractPieces(stream);
    EXPECT_EQ(second.menuId, "NAMED");
    EXPECT_EQ(stream.size(), 2u);
    none.ExtractPieces(stream);
    EXPECT_TRUE(none.items.empty());

    auto source = SourceMenu("1");
    const std::vector<std::string> before = test::Spell(source->items);
    source->MergePieces(none);
    EXPECT_EQ(test::Spell(source->items), before);
    source->MergePieces(first);
    std::vector<std::string> after = test::Spell(source->items);
    EXPECT_EQ(after[5], "    <item id=\"11\">[ONE]</item></menu>");
    for (std::string& line : after)
        line.erase(0, line.find_first_not_of(' '));
    EXPECT_EQ(after, kTranslated);
}

} // namespace
} // namespace tervane
