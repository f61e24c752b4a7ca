// Engines used for one input after another must answer as new ones would:
// the lexer, the parser and its kept elements, and the label façade.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "label/grammars/label_parser.h"
#include "tests/label/runtime_toy.h"

namespace tervane::test {
namespace {

// Texts that stop inside a quote leave the lexer in its second expression
// list; the same input twice needs no element more than the first time.
TEST(EngineReuse, LexerAndParserAfterResetWorkAsNewOnesAndKeepTheirElements) {
    SSLexTable lexTable(ToyLexImage(), "TOY");
    SSYaccTable yaccTable(BuildYaccTable(ToyGrammar(), kCyss), "TOY");
    SSLexStringConsumer consumer(u"");
    SSLex lex(&consumer, &lexTable);
    RecordingYacc reused(&lex, &yaccTable);
    const std::vector<std::u16string> texts = {u"1 2 3", u"\"quoted 1 2", u"1 x 2", u"",
                                               u"4\n5",  u"7 8",          u"7 8"};
    std::size_t kept = 0;
    for (std::size_t i = 0; i < texts.size(); ++i) {
        SSLexStringConsumer freshConsumer(texts[i]);
        SSLex freshLex(&freshConsumer, &lexTable);
        RecordingYacc fresh(&freshLex, &yaccTable);
        auto parse = [](RecordingYacc& yacc) {
            try {
                return yacc.parse();
            } catch (const SSException& e) {
                return -e.code();
            }
        };
        const int expected = parse(fresh);
        consumer.assign(texts[i]);
        lex.reset();
        reused.reset();
        reused.reductions.clear();
        EXPECT_EQ(parse(reused), expected) << i;
        EXPECT_EQ(reused.reductions, fresh.reductions) << i;
        EXPECT_EQ(reused.result() != nullptr, fresh.result() != nullptr) << i;
        EXPECT_EQ(reused.stackDepth(), fresh.stackDepth()) << i;
        EXPECT_EQ(lex.listDepth(), freshLex.listDepth()) << i;
        EXPECT_EQ(consumer.consumed(), freshConsumer.consumed()) << i;
        reused.reset();
        if (i == texts.size() - 1) {
            EXPECT_EQ(reused.keptElements(), kept);
        }
        kept = reused.keptElements();
    }
    EXPECT_GT(kept, 0u);
}

struct Label {
    LabelKind kind;
    std::u16string text;
};

TEST(EngineReuse, OneLabelParserForManyLabelsGivesEachLabelsOwnTokens) {
    const std::vector<Label> labels = {
        {LabelKind::String, u"50% off "},
        {LabelKind::Menu, u"&Open...\\tCtrl+O"},
        {LabelKind::Menu, u"Go\\tkey\nmore"}, // raises inside the shortcut list
        {LabelKind::Dialog, u"%d%% &Done\\r\\n"},
        {LabelKind::String, u"%I64d and a long text behind it "},
        {LabelKind::String, u""},
    };
    CLabelParser parser;
    LabelTokens kept;
    for (const Label& label : labels) {
        const LabelTokenList expected = ParseLabel(label.kind, label.text);
        const std::string name(label.text.begin(), label.text.end());

        LabelTokenList list;
        ASSERT_EQ(parser.Initialise(label.kind), 0);
        parser.Parse(label.text, list);
        EXPECT_EQ(list, expected) << name;

        kept.clear();
        ASSERT_EQ(parser.Initialise(label.kind), 0);
        parser.Parse(label.text, kept);
        EXPECT_EQ(LabelTokenList(kept.begin(), kept.end()), expected) << name;

        // A parse without Initialise gives nothing.
        LabelTokenList none;
        parser.Parse(label.text, none);
        EXPECT_TRUE(none.empty()) << name;
    }
    EXPECT_NE(parser.Initialise(static_cast<std::uint16_t>(9)), 0);
    LabelTokenList none;
    parser.Parse(u"text", none);
    EXPECT_TRUE(none.empty());
}

} // namespace
} // namespace tervane::test
