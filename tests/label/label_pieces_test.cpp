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

} // namespace
} // namespace tervane
