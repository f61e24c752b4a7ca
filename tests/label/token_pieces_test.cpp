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

// Every text of up to six units over the escaped characters and a letter
// gives what the replacements give one after the other.
TEST(TokenPieces, OnePassUnescapingMatchesTheReplacementsInTurn) {
    auto replaceAll = [](std::u16string text, std::u16string_view from, std::u16string_view to) {
        std::u16string out;
        std::size_t at = 0;
        for (std::size_t found; (found = text.find(from, at)) != std::u16string::npos;
             at = found + from.size())
            out.append(text, at, found - at).append(to);
        return out.append(text, at);
    };
    const std::u16string alphabet = u"\\%&a";
    for (LabelKind kind : {LabelKind::String, LabelKind::Menu, LabelKind::Dialog}) {
        std::vector<std::u16string> texts = {u""};
        for (std::size_t first = 0; first < texts.size(); ++first) {
            if (texts[first].size() == 6)
                continue;
            for (char16_t c : alphabet)
                texts.push_back(texts[first] + c);
        }
        for (const std::u16string& text : texts) {
            std::u16string expected = replaceAll(text, u"\\\\", u"\\");
            if (kind != LabelKind::Menu)
                expected = replaceAll(expected, u"%%", u"%");
            if (kind != LabelKind::String)
                expected = replaceAll(expected, u"&&", u"&");
            std::u16string appended = u"x";
            AppendUnescapedLabelText(appended, text, kind);
            ASSERT_EQ(appended, u"x" + expected) << pe::Utf16ToUtf8(text);
        }
    }
}

} // namespace
} // namespace tervane
