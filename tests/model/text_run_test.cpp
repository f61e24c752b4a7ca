#include "model/text_run.h"

#include <gtest/gtest.h>

#include <string>

#include "label/grammars/escaped_label.h"
#include "label/grammars/token_pieces.h"

namespace tervane {
namespace {

// Runs of every escaped character, of odd and even length, at the edges of
// the eight-unit blocks and inside long plain stretches.
const std::u16string kTexts[] = {
    u"",
    u"&%\\&%\\",
    u"1234567\\\\",
    u"12345678%%%%%",
    u"abcdefghijklmno&&pqrstuvwxyz%%\\\\\\",
    u"\r\n\t\b\f\v\0x",
    u"Tab\there\\tnot",
};

TEST(TextRun, UndoesTheEscapesOfEachKindAsTheTokenPiecesDo) {
    for (const LabelKind kind : {LabelKind::String, LabelKind::Menu, LabelKind::Dialog}) {
        TextRun run;
        std::u16string joined;
        // Appended in turn: the buffer grows with its first units kept.
        for (int round = 0; round < 3; ++round) {
            for (const std::u16string& text : kTexts) {
                run.AppendUnescaped(text, kind);
                AppendUnescapedLabelText(joined, text, kind);
                ASSERT_EQ(run.view(), joined) << static_cast<int>(kind);
            }
        }
    }
}

TEST(TextRun, EscapesDialogAndMenuLabelsAsTheGrammarsRead) {
    UnitBuffer buffer;
    for (const LabelKind kind : {LabelKind::Menu, LabelKind::Dialog}) {
        for (const std::u16string& text : kTexts) {
            const std::u16string expected = EscapeLabel(text, kind);
            EXPECT_EQ(EscapeLabelInto(buffer, text, kind, false), expected);
            EXPECT_EQ(EscapeLabelInto(buffer, text, kind, true), expected + u' ');
        }
        // Every unit escaped: the longest result fits.
        const std::u16string all(100, u'\\');
        EXPECT_EQ(EscapeLabelInto(buffer, all, kind, true), std::u16string(200, u'\\') + u' ');
    }
}

} // namespace
} // namespace tervane
