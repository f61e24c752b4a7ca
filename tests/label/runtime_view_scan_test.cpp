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

// Every field a lexeme and the scan leave behind, step by step.
std::vector<std::vector<std::uint32_t>> ScanAll(const SSLexTable& table, std::u16string_view text,
                                                bool view) {
    // A longer text before, full of stops, leaves them behind the end.
    SSLexStringConsumer consumer(std::u16string(64, u'"') + std::u16string(64, u'\n'));
    consumer.assign(text);
    ViewLex lex(&consumer, &table);
    std::vector<std::vector<std::uint32_t>> steps;
    for (int guard = 0; guard < 1000; ++guard) {
        int got;
        SSLexTokenData token;
        if (view) {
            got = lex.nextView(token);
        } else {
            SSLexToken copied;
            got = lex.nextToken(copied) ? 1 : 0;
            token = copied.take();
        }
        steps.push_back({static_cast<std::uint32_t>(got), token.token, token.start, token.length,
                         token.line, token.offset, consumer.index(), consumer.lineDelta(),
                         consumer.offset(), consumer.consumed(), consumer.current(),
                         consumer.lexemeStart(), consumer.lexemeLine(), consumer.endOfData(),
                         lex.state(), lex.lexemeCount()});
        if (got != 1)
            break;
    }
    return steps;
}

TEST(ViewScan, LeavesWhatTheGeneralScanLeaves) {
    std::vector<std::u16string> texts = {
        u"",
        u"ab 12<=> <= \"x y\"z\ncd",
        u"\uFEFFab",
        u"\"\u00e9\u4e2d\uffff\u0100 wide \"x",
        u"\"line\nfeeds\n\n inside\" 1\n\n2",
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
