// Tokens of labels of the three kinds, in the escaped input form, through the
// built-in tables and the runtime, also by one parser used for many labels.
#include <gtest/gtest.h>

#include "label/grammars/escaped_label.h"
#include "label/grammars/label_parser.h"
#include "platform/pe/resource_name_text.h"
#include "tests/label/label_token_print.h"

namespace tervane {
namespace {

struct TokenCase {
    LabelKind kind;
    std::u16string text;
    LabelTokenList tokens;
};

void Check(const std::vector<TokenCase>& cases) {
    for (const TokenCase& c : cases) {
        SCOPED_TRACE(pe::Utf16ToUtf8(c.text));
        const LabelTokenList tokens = ParseLabel(c.kind, c.text);
        EXPECT_EQ(tokens, c.tokens);
    }
}

constexpr auto S = LabelKind::String;
constexpr auto M = LabelKind::Menu;
constexpr auto D = LabelKind::Dialog;

// Random labels are checked against the token languages elsewhere; these pin
// texts outside that alphabet.
TEST(LabelTokens, TextsOutsideTheRandomAlphabet) {
    Check({
        {S, u"50% off", {{1, u"50"}, {8, u"% o"}, {1, u"ff"}}},
        {S, u"%1!s! of %2", {{8, u"%1"}, {1, u"!s! of "}, {8, u"%2"}}},
        {S, u"\uFEFF%d \u4e2d", {{8, u"%d"}, {1, u" \u4e2d"}}},
        // The escaped form has no line feed; a raw one stops the shortcut's lexer.
        {M, u"Go\\tCtrl+\nX", {{1, u"Go"}}},
    });
}

TEST(LabelTokens, ShortcutSplit) {
    auto shortcut = [](std::u16string keys, LabelTokenList split) {
        split.insert(split.begin(), {{1, u"Go"}, {5, u"\\t"}});
        return TokenCase{M, u"Go\\t" + keys, split};
    };
    Check({
        shortcut(u"Ctrl+Shift+A", {{1, u"Ctrl"}, {3, u"+"}, {1, u"Shift"}, {3, u"+"}, {1, u"A"}}),
        shortcut(u"Ctrl++", {{1, u"Ctrl"}, {3, u"+"}, {1, u"+"}}),
        shortcut(u"Ctrl+", {{1, u"Ctrl+"}}),
        shortcut(u"+A", {{1, u"+A"}}),
        shortcut(u"A+,B", {{1, u"A"}, {3, u"+"}, {1, u",B"}}),
    });
}

TEST(LabelTokens, EscapedInputForm) {
    struct Case {
        LabelKind kind;
        std::u16string raw;
        std::u16string escaped;
    };
    const Case cases[] = {
        {S, u"1\r\n2\b\f", u"1\\r\\n2\\b\\f"},
        {S, u"tab\there", u"tab\there"},
        {M, u"&Open\tCtrl+O", u"&Open\\tCtrl+O"},
        {M, u"\\n", u"\\\\n"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(EscapeLabel(c.raw, c.kind), c.escaped) << pe::Utf16ToUtf8(c.raw);
}

// The text ends at its first null, wherever that lies.
TEST(LabelTokens, TextEndsAtItsFirstNull) {
    const std::u16string text = u"Save %s to \\share now?";
    for (LabelKind kind : {S, M, D}) {
        for (std::size_t at = 0; at <= text.size(); ++at) {
            std::u16string cut = text;
            cut.insert(at, 1, u'\0');
            cut += u"%d&x";
            EXPECT_EQ(ParseLabel(kind, cut), ParseLabel(kind, text.substr(0, at)))
                << static_cast<int>(kind) << " null at " << at;
        }
    }
}

// A label parser used for one label after another answers as a new one
// would, also after a label that raised inside the shortcut's list.
struct Label {
    LabelKind kind;
    std::u16string text;
};

TEST(EngineReuse, OneLabelParserForManyLabelsGivesEachLabelsOwnTokens) {
    const std::vector<Label> labels = {
        {S, u"50% off "},
        {M, u"&Open...\\tCtrl+O"},
        {M, u"Go\\tkey\nmore"}, // raises inside the shortcut list
        {D, u"%d%% &Done\\r\\n"},
        {S, u"%I64d and a long text behind it "},
        {S, u""},
    };
    CLabelParser parser;
    LabelTokens kept;
    for (const Label& label : labels) {
        const LabelTokenList expected = ParseLabel(label.kind, label.text);
        const std::string name = pe::Utf16ToUtf8(label.text);

        LabelTokenList list;
        ASSERT_EQ(parser.Initialise(label.kind), 0);
        parser.Parse(label.text, list);
        EXPECT_EQ(list, expected) << name;

        kept.clear();
        ASSERT_EQ(parser.Initialise(label.kind), 0);
        parser.Parse(label.text, kept);
        EXPECT_EQ(LabelTokenList(kept.begin(), kept.end()), expected) << name;
    }
}

} // namespace
} // namespace tervane
