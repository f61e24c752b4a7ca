// Engines used for one input after another must answer as new ones would:
// the lexer, the parser and its kept elements, and the label façade.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "label/grammars/label_parser.h"
#include "tests/label/runtime_toy.h"

namespace tervane::test {
namespace {

using Scanned = std::vector<std::string>; // "token text line:offset"

Scanned ScanRest(SSLex& lex) {
    Scanned out;
    while (SSRef<SSLexLexeme> lexeme = lex.nextLexeme())
        out.push_back(std::to_string(lexeme->parseToken()) + " " + lexeme->displayText() + " " +
                      std::to_string(lexeme->line()) + ":" + std::to_string(lexeme->offset()));
    return out;
}

// Texts that end inside a quote leave the second expression list current.
const std::vector<std::u16string> kLexTexts = {
    u"alphabetical soup 123\nzebra", u"\"quoted text to the end",
    u"ab\n\ncd efghijklmnop",        u"",
    u"<=> long words then \"more",   u"x",
};

TEST(EngineReuse, LexerAfterResetScansAsANewOne) {
    SSLexTable table(ToyLexImage(), "TOY");
    SSLexStringConsumer consumer(u"");
    SSLex reused(&consumer, &table);
    for (const std::u16string& text : kLexTexts) {
        SSLexStringConsumer fresh(text);
        SSLex lex(&fresh, &table);
        const Scanned expected = ScanRest(lex);

        consumer.assign(text);
        reused.reset();
        EXPECT_EQ(ScanRest(reused), expected) << std::string(text.begin(), text.end());
        EXPECT_EQ(consumer.consumed(), fresh.consumed());
        EXPECT_EQ(reused.listDepth(), lex.listDepth());
    }
}

TEST(EngineReuse, ParserAfterResetParsesAsANewOneAndKeepsItsElements) {
    SSLexTable lexTable(ToyLexImage(), "TOY");
    SSYaccTable yaccTable(BuildYaccTable(ToyGrammar(), kCyss), "TOY");
    SSLexStringConsumer consumer(u"");
    SSLex lex(&consumer, &lexTable);
    RecordingYacc reused(&lex, &yaccTable);
    const std::vector<std::u16string> texts = {u"1 2 3", u"1 x 2", u"", u"4 5", u"7 8", u"7 8"};
    std::size_t kept = 0;
    for (std::size_t i = 0; i < texts.size(); ++i) {
        SSLexStringConsumer freshConsumer(texts[i]);
        SSLex freshLex(&freshConsumer, &lexTable);
        RecordingYacc fresh(&freshLex, &yaccTable);
        int expected = -1, got = -1;
        try {
            expected = fresh.parse();
        } catch (const SSException&) {
        }
        consumer.assign(texts[i]);
        lex.reset();
        reused.reset();
        reused.reductions.clear();
        try {
            got = reused.parse();
        } catch (const SSException&) {
        }
        EXPECT_EQ(got, expected) << i;
        EXPECT_EQ(reused.reductions, fresh.reductions) << i;
        EXPECT_EQ(reused.result() != nullptr, fresh.result() != nullptr) << i;
        EXPECT_EQ(reused.stackDepth(), fresh.stackDepth()) << i;
        reused.reset();
        // The same input twice needs no element more than the first time.
        if (i == texts.size() - 1) {
            EXPECT_EQ(reused.keptElements(), kept);
        }
        kept = reused.keptElements();
    }
    EXPECT_GT(kept, 0u);
}

TEST(EngineReuse, AnElementMayOutliveItsParser) {
    SSLexTable lexTable(ToyLexImage(), "TOY");
    SSYaccTable yaccTable(BuildYaccTable(ToyGrammar(), kCyss), "TOY");
    SSLexStringConsumer consumer(u"1 2");
    SSLex lex(&consumer, &lexTable);
    SSRef<SSYaccStackElement> held;
    {
        RecordingYacc yacc(&lex, &yaccTable);
        ASSERT_EQ(yacc.parse(), 0);
        held = yacc.result();
    }
    // The parser's pool is gone from its side; the element frees it.
    EXPECT_EQ(held->refCount(), 1u);
    held = nullptr;
}

struct Label {
    LabelKind kind;
    std::u16string text;
};

TEST(EngineReuse, OneLabelParserForManyLabelsGivesEachLabelsOwnTokens) {
    const std::vector<Label> labels = {
        {LabelKind::String, u"50% off "},
        {LabelKind::Menu, u"&Open...\\tCtrl+O"},
        {LabelKind::Menu, u""},               // no token
        {LabelKind::Menu, u"Go\\tkey\nmore"}, // raises inside the shortcut list
        {LabelKind::Menu, u"Cut\\t"},
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
