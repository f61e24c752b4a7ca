// The scan of whole wide text against the general one, and the stop sets
// that let it pass the runs of a looping state eight characters at a time.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "label/runtime/ss_lex.h"
#include "platform/win32/resources.h"
#include "tests/label/runtime_toy.h"

namespace tervane::test {
namespace {

// What a lexeme and the scan leave behind, in every field they set.
struct Step {
    int got;
    SSLexTokenData token;
    std::uint32_t index, lineDelta, offset, consumed, current, lexemeStart, lexemeLine, state,
        count;
    bool endOfData;
    std::string Describe() const {
        return std::to_string(got) + " t" + std::to_string(token.token) + " @" +
               std::to_string(token.start) + "+" + std::to_string(token.length) + " " +
               std::to_string(token.line) + ":" + std::to_string(token.offset) + " i" +
               std::to_string(index) + " d" + std::to_string(lineDelta) + " o" +
               std::to_string(offset) + " n" + std::to_string(consumed) + " c" +
               std::to_string(current) + " s" + std::to_string(lexemeStart) + " l" +
               std::to_string(lexemeLine) + " q" + std::to_string(state) + " k" +
               std::to_string(count) + (endOfData ? " end" : "");
    }
};

std::vector<std::string> ScanAll(const SSLexTable& table, std::u16string_view text, bool view) {
    // A longer text before, full of stops, leaves them behind the end.
    SSLexStringConsumer consumer(std::u16string(64, u'"') + std::u16string(64, u'\n'));
    consumer.assign(text);
    ViewLex lex(&consumer, &table);
    std::vector<std::string> steps;
    for (int guard = 0; guard < 1000; ++guard) {
        Step step{};
        if (view) {
            step.got = lex.nextView(step.token);
        } else {
            SSLexToken token;
            step.got = lex.nextToken(token) ? 1 : 0;
            step.token = token.take();
        }
        step.index = consumer.index();
        step.lineDelta = consumer.lineDelta();
        step.offset = consumer.offset();
        step.consumed = consumer.consumed();
        step.current = consumer.current();
        step.lexemeStart = consumer.lexemeStart();
        step.lexemeLine = consumer.lexemeLine();
        step.endOfData = consumer.endOfData();
        step.state = lex.state();
        step.count = lex.lexemeCount();
        steps.push_back(step.Describe());
        if (step.got != 1)
            break;
    }
    return steps;
}

TEST(ViewScan, LeavesWhatTheGeneralScanLeaves) {
    std::vector<std::u16string> texts = {
        u"",
        u"ab 12<=> <= \"x y\"z\ncd",
        u"\uFEFFab",
        u"\uFFFE\"q\"",
        u"\"unterminated text to the end",
        u"\"\u00e9\u4e2d\uffff\u0100 wide \"x",
        u"\"line\nfeeds\n\n inside\" 1\n\n2",
        u"<=",
        u"<=<",
    };
    // Runs of quoted text that end at every place of the blocks of eight,
    // with and without a line feed inside.
    for (std::size_t n = 0; n <= 34; ++n) {
        texts.push_back(u"\"" + std::u16string(n, u'r') + u"\" 7");
        texts.push_back(u"a \"" + std::u16string(n, u's') + u"\n" + std::u16string(n % 9, u't'));
    }
    SSLexTable table(ToyLexImage(), "TOY");
    for (const std::u16string& text : texts) {
        SCOPED_TRACE(std::string(text.begin(), text.end()));
        EXPECT_EQ(ScanAll(table, text, true), ScanAll(table, text, false));
    }
}

// Whether c takes state out of itself, or is a line feed, as the moves say.
bool Stops(const SSLexExpressionList& list, std::uint32_t state, std::uint32_t c) {
    return c == 10 || list.transition(state, c) != state;
}

TEST(ViewScan, LoopStopsAreTheCharactersThatLeaveTheState) {
    struct Case {
        const char* name;
        SSLexTable table;
        std::vector<std::pair<std::uint32_t, std::uint32_t>> looping; // list, state
    };
    const HMODULE module = TervaneModuleHandle();
    std::vector<Case> cases;
    cases.push_back({"toy", SSLexTable(ToyLexImage(), "TOY"), {{1, 1}}});
    cases.push_back({"string", SSLexTable(module, "STRINGRESPARSE", "SSLEXTABLE"), {{0, 10}}});
    cases.push_back({"menu", SSLexTable(module, "MENURESPARSE", "SSLEXTABLE"), {{0, 1}, {1, 1}}});
    cases.push_back({"dialog", SSLexTable(module, "DIALOGRESPARSE", "SSLEXTABLE"), {{0, 1}}});
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        for (auto [index, state] : c.looping)
            EXPECT_NE(c.table.expressionList(index)->loopStops(state), nullptr) << state;
        for (std::uint32_t index = 0; index < c.table.listCount(); ++index) {
            const SSLexExpressionList& list = *c.table.expressionList(index);
            for (std::uint32_t state = 0; state < list.stateCount(); ++state) {
                const std::uint16_t* stops = list.loopStops(state);
                if (!stops)
                    continue;
                for (std::uint32_t ch = 0; ch <= 0xFFFF; ++ch) {
                    bool listed = false;
                    for (std::uint32_t i = 0; i < SSLexExpressionList::kLoopStops; ++i)
                        for (std::uint32_t k = 0; k < SSLexExpressionList::kStopWidth; ++k)
                            listed |= stops[i * SSLexExpressionList::kStopWidth + k] == ch;
                    ASSERT_EQ(listed, Stops(list, state, ch))
                        << "list " << index << " state " << state << " char " << ch;
                }
            }
        }
    }
}

} // namespace
} // namespace tervane::test
