// Labels through the grammars into pieces: merged text as the translator sees
// it, inline tags in the escaped form.
#include <gtest/gtest.h>

#include "label/grammars/label_parser.h"
#include "label/grammars/token_pieces.h"
#include "platform/pe/resource_name_text.h"

namespace tervane {
namespace {

// "text:..." or "tag:..." for each piece.
std::vector<std::string> Describe(const CLabelPieceList& pieces) {
    std::vector<std::string> out;
    for (const auto& piece : pieces) {
        if (const CTextLabelPiece* text = TextOf(*piece))
            out.push_back("text:" + pe::Utf16ToUtf8(text->text));
        else if (const TagDescriptor* tag = TagOf(*piece))
            out.push_back((tag->inlineTag ? "tag:" : "block:") + pe::Utf16ToUtf8(tag->tagText));
    }
    return out;
}

TEST(TokenPieces, LabelsOfEachKind) {
    struct Case {
        LabelKind kind;
        std::u16string label;
        std::vector<std::string> pieces;
    };
    const Case cases[] = {
        {LabelKind::String, u"Save %s?", {"text:Save ", "tag:%s", "text:?"}},
        {LabelKind::String, u"100%% of C:\\\\\\\\x\\n", {"text:100% of C:\\\\x", "tag:\\n"}},
        {LabelKind::String, u"a && b", {"text:a && b"}},
        {LabelKind::Dialog, u"Fish && Chips", {"text:Fish & Chips"}},
        {LabelKind::Dialog,
         u"%d%% &Done\\r\\n",
         {"tag:%d", "text:% ", "tag:&", "text:Done", "tag:\\r", "tag:\\n"}},
        {LabelKind::Menu, u"100%% &&x", {"text:100%% &x"}},
        {LabelKind::Menu,
         u"&Open\\tCtrl+O",
         {"tag:&", "text:Open", "tag:\\t", "text:Ctrl", "tag:+", "text:O"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(pe::Utf16ToUtf8(c.label));
        CLabelPieceList pieces;
        AppendTokenPieces(ParseLabel(c.kind, c.label), c.kind, pieces);
        EXPECT_EQ(Describe(pieces), c.pieces);
    }
}

TEST(TokenPieces, UnescapingReplacesOneAfterTheOther) {
    struct Case {
        LabelKind kind;
        std::u16string text;
        std::u16string plain;
    };
    const Case cases[] = {
        {LabelKind::String, u"\\\\\\", u"\\\\"}, // the odd backslash stays
        {LabelKind::String, u"%%%&&", u"%%&&"},
        {LabelKind::Dialog, u"%%%&&&", u"%%&&"},
        {LabelKind::Menu, u"%%\\\\&&", u"%%\\&"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(UnescapeLabelText(c.text, c.kind), c.plain) << pe::Utf16ToUtf8(c.text);
}

} // namespace
} // namespace tervane
