#include "label/pieces/label_piece.h"

#include <gtest/gtest.h>

namespace tervane {
namespace {

// Narrow names and tag texts are widened with the process's code page, UTF-8.
TEST(LabelPieces, NarrowNamesAndTagTextsAreWidened) {
    const auto open = MakeOpenTag("\xC3\xA9t\xC3\xA9", "<menu id=\"\xE2\x82\xAC\">");
    EXPECT_EQ(open->tag.name, u"\u00E9t\u00E9");
    EXPECT_EQ(open->tag.tagText, u"<menu id=\"\u20AC\">");
    // A byte that is no UTF-8 becomes the replacement character.
    EXPECT_EQ(MakeCloseTag("menu", "</m\xFFnu>")->tag.tagText, u"</m\uFFFDnu>");
}

} // namespace
} // namespace tervane
