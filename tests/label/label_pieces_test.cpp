#include "label/pieces/label_piece.h"

#include <gtest/gtest.h>

namespace tervane {
namespace {

struct Marks {
    LONG structural, inlineClass, endTag, startTag, inlineTag;
    bool operator==(const Marks&) const = default;
};

Marks MarksOf(const TagDescriptor& tag) {
    return {tag.structural, tag.inlineClass, tag.endTag, tag.startTag, tag.inlineTag};
}

TEST(LabelPieces, FactoriesSetNamesTextsAndMarks) {
    struct Case {
        std::unique_ptr<CTagLabelPiece> piece;
        std::u16string name;
        std::u16string tagText;
        Marks marks;
    };
    Case cases[] = {
        {MakeCloseTag("dialog", "</dialog>"), u"dialog", u"</dialog>", {1, 0, 1, 0, 0}},
        {MakeEmptyTag("separator", "<separator/>"), u"separator", u"<separator/>", {1, 0, 0, 0, 0}},
        {MakeInlineTag(u"%1"), u"%1", u"%1", {0, 1, 0, 0, 1}},
        // Narrow names are widened with the process's code page, UTF-8.
        {MakeOpenTag("\xC3\xA9t\xC3\xA9", "<menu id=\"\xE2\x82\xAC\">"),
         u"\u00E9t\u00E9",
         u"<menu id=\"\u20AC\">",
         {1, 0, 0, 1, 0}},
        // A byte that is no UTF-8 becomes the replacement character.
        {MakeCloseTag("menu", "</m\xFFnu>"), u"menu", u"</m\uFFFDnu>", {1, 0, 1, 0, 0}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.tagText.begin(), c.tagText.end()));
        EXPECT_EQ(c.piece->tag.name, c.name);
        EXPECT_EQ(c.piece->tag.tagText, c.tagText);
        EXPECT_EQ(MarksOf(c.piece->tag), c.marks);
        EXPECT_EQ(c.piece->range, PieceRange{});
    }
}

TEST(LabelPieces, CopiesKeepTypeAndEveryField) {
    CLabelPieceList list;
    auto open = MakeOpenTag("string", "<string id=\"97\">");
    open->range = {{1, 2}, {3, 4}};
    auto text = MakeText(u"Save ");
    text->inSegment = 1;
    text->range = {{5, 6}, {7, 8}};
    list.push_back(std::move(open));
    list.push_back(std::move(text));
    list.push_back(MakeInlineTag(u"%s"));
    list.push_back(std::make_unique<CLabelPiece>(PieceRange{{9, 10}, {11, 12}}));

    const CLabelPieceList copy = CloneList(list);
    ASSERT_EQ(copy.size(), list.size());
    for (std::size_t i = 0; i < list.size(); ++i) {
        EXPECT_NE(copy[i].get(), list[i].get());
        EXPECT_EQ(typeid(*copy[i]), typeid(*list[i]));
        EXPECT_EQ(copy[i]->range, list[i]->range);
    }
    EXPECT_EQ(TextOf(*copy[1])->inSegment, 1);
    EXPECT_EQ(TagOf(*copy[3]), nullptr);
    EXPECT_EQ(TextOf(*copy[3]), nullptr);

    // The copy is deep: changing it leaves the source as it was.
    static_cast<CTextLabelPiece&>(*copy[1]).text = u"Sichern ";
    EXPECT_EQ(TextOf(*list[1])->text, u"Save ");
}

TEST(LabelPieces, LabelIsTextAndInlineTagsInOrder) {
    CLabelPieceList list;
    list.push_back(MakeOpenTag("string", "<string id=\"97\">"));
    list.push_back(MakeText(u"Save "));
    list.push_back(MakeInlineTag(u"%s"));
    list.push_back(MakeText(u"?"));
    list.push_back(MakeCloseTag("string", "</string>"));
    EXPECT_EQ(JoinLabel(list), u"Save %s?");
    EXPECT_EQ(JoinLabel({}), u"");
}

} // namespace
} // namespace tervane
