// The shift-reduce loop on a toy grammar of number lists: reduce calls,
// recovery, lookahead automata, the parser's errors and its looked-up actions.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "tests/label/runtime_toy.h"

namespace tervane::test {
namespace {

struct Outcome {
    int result = -1;
    std::vector<std::string> reductions;
    std::int32_t code = 0; // of a raised SSException
    std::string message;
};

// How the parser holds its lexemes and elements: made at every step; made
// when a reduction asks, from lexemes left in the consumer; or never, the
// reductions reading only texts.
enum class Holding { objects, lazy, textsOnly };
constexpr Holding kHoldings[] = {Holding::objects, Holding::lazy, Holding::textsOnly};

Outcome RunToy(const YaccGrammar& grammar, std::u16string_view text, std::uint32_t magic = kCyss,
               std::optional<int> probe = std::nullopt, std::uint64_t plain = 0,
               Holding holding = Holding::objects, bool endOnFailedRecovery = false) {
    SSLexTable lexTable(ToyLexImage(), "TOY");
    SSYaccTable yaccTable(BuildYaccTable(grammar, magic), "TOY");
    SSLexStringConsumer consumer(text);
    ViewLex lex(&consumer, &lexTable);
    RecordingYacc yacc(&lex, &yaccTable);
    yacc.probe = probe;
    yacc.setPlain(plain);
    if (holding != Holding::objects)
        yacc.setLazy();
    yacc.textsOnly = holding == Holding::textsOnly;
    if (endOnFailedRecovery)
        yacc.setEndOnFailure();
    Outcome out;
    try {
        out.result = yacc.parse();
        if (out.result == 0) {
            EXPECT_NE(yacc.result(), nullptr);
        }
    } catch (const SSException& e) {
        out.code = e.code();
        out.message = e.message();
    }
    out.reductions = yacc.reductions;
    return out;
}

YaccGrammar Changed(const std::function<void(YaccGrammar&)>& change) {
    YaccGrammar g = ToyGrammar();
    change(g);
    return g;
}

// The toy grammar with one state that reads a token ahead through automaton 0,
// which shifts to state 1 once it has seen a number followed by a number or
// the end.
YaccGrammar WithLookahead() {
    return Changed([](YaccGrammar& g) {
        g.rows[0].actions = {{Lookahead(0), kNum}};
        g.lookaheads = {BuildList({
            {0, 0, 0, 0, 0, {{kNum, kNum, 1}}},
            {0, 0, 0, 0, 0, {{kNum, kNum, 2}, {kStart, kStart, 2}}},
            {1, kFinal, 0, 0, 0, {}},
        })};
    });
}

TEST(ParserLoop, ReducesInTheOrderOfTheText) {
    struct Case {
        const char* name;
        YaccGrammar grammar;
        std::u16string text;
        std::uint32_t magic;
        int result;
        std::vector<std::string> reductions;
        std::uint64_t plain = 0;
    };
    auto syncAll = Changed([](YaccGrammar& g) { g.rows[2].flags = 0x4; });
    auto errorEntry = Changed([](YaccGrammar& g) {
        g.rows[2].flags = 0x2;
        g.rows[2].errorState = 4;
    });
    auto zeroSize = Changed([](YaccGrammar& g) {
        // list : (empty) first, then numbers: a size-0 production pops nothing.
        g.productions[2] = {0, kList};
        g.rows[0] = {0, {{Reduce(2), kNum}, {Reduce(2), kStart}}, {{2, kList}}};
    });
    const std::vector<Case> cases = {
        {"one number", ToyGrammar(), u"7", kCyss, 0, {"2:7"}},
        {"left recursion", ToyGrammar(), u"1 2 3", kCyss, 0, {"2:1", "1:-,2", "1:-,3"}},
        {"older layout", ToyGrammar(), u"1 2 3", 0, 0, {"2:1", "1:-,2", "1:-,3"}},
        {"empty production", zeroSize, u"4 5", kCyss, 0, {"2:", "1:-,4", "1:-,5"}},
        // Recovery skips to a synchronising token and reports the error.
        {"recovery on all actions", syncAll, u"1 a 2", kCyss, 1, {"2:1", "1:-,2"}},
        {"recovery through the error entry",
         errorEntry,
         u"1 a b 2",
         kCyss,
         1,
         {"2:1", "3:-,%error,2"}},
        {"lookahead resolves to shift", WithLookahead(), u"1 2", kCyss, 0, {"2:1", "1:-,2"}},
        {"lookahead sees the end", WithLookahead(), u"1", kCyss, 0, {"2:1"}},
        // Productions marked plain get a new element without a call to
        // reduce; the stack still shrinks by their size.
        {"plain production", ToyGrammar(), u"1 2 3", kCyss, 0, {"1:-,2", "1:-,3"}, 1u << 2},
        {"all plain", ToyGrammar(), u"1 2 3", kCyss, 0, {}, (1u << 1) | (1u << 2)},
    };
    for (Holding holding : kHoldings) {
        SCOPED_TRACE(static_cast<int>(holding));
        for (const Case& c : cases) {
            Outcome out = RunToy(c.grammar, c.text, c.magic, std::nullopt, c.plain, holding);
            EXPECT_EQ(out.code, 0) << c.name << ": " << out.message;
            EXPECT_EQ(out.result, c.result) << c.name;
            EXPECT_EQ(out.reductions, c.reductions) << c.name;
        }
    }
}

TEST(ParserErrors, RaisedWithTheirCodesAndMessages) {
    struct Case {
        const char* name;
        YaccGrammar grammar;
        std::u16string text;
        std::optional<int> probe;
        std::int32_t code;
        std::string message;
    };
    auto marked = Changed([](YaccGrammar& g) {
        g.rows[2].flags = 0x1;
        g.rows[2].actions[1].value |= 0x80000000;
    });
    auto noGoto = Changed([](YaccGrammar& g) { g.productions[2] = {1, 0x4009}; });
    auto shiftEof = Changed([](YaccGrammar& g) { g.rows[2].actions[0].value = Shift(3); });
    auto loops = Changed([](YaccGrammar& g) {
        g.productions.push_back({0, kList});
        g.rows[0] = {0, {{Reduce(4), kNum}}, {{0, kList}}};
    });
    const std::string noToken = "SSYacc0105e: Error token failed, no valid token";
    const std::vector<Case> cases = {
        {"syntax error", ToyGrammar(), u"1 a", {}, 16, noToken},
        {"no sync token at the end",
         marked,
         u"1 a",
         {},
         17,
         "SSYacc0106e: Error token failed, eof"},
        {"lookahead automaton finds no way", WithLookahead(), u"1 a", {}, 16, noToken},
        {"no goto for the left side", noGoto, u"1", {}, 18, "SSYacc0107e: Invalid goto on 16393"},
        {"symbol beyond the production", ToyGrammar(), u"1", 1, 19,
         "SSYacc0108e: Invalid index on elementFromProduction, 1"},
        {"read behind the end", shiftEof, u"1", {}, 14, "SSYacc0103e: Attempted read past eof"},
        // A table that reduces for ever without reading.
        {"endless reduction", loops, u"1", {}, 13, "SSYacc0102e: Parse failed, invalid table"},
    };
    for (const Case& c : cases) {
        Outcome out = RunToy(c.grammar, c.text, kCyss, c.probe);
        EXPECT_EQ(out.code, c.code) << c.name;
        EXPECT_EQ(out.message, c.message) << c.name;
    }
}

// Asked to, the parser ends with 1 where a recovery fails, instead of
// raising; it still raises what no recovery causes.
TEST(ParserErrors, AFailedRecoveryEndsTheParseWhenAsked) {
    auto marked = Changed([](YaccGrammar& g) {
        g.rows[2].flags = 0x1;
        g.rows[2].actions[1].value |= 0x80000000;
    });
    auto noGoto = Changed([](YaccGrammar& g) { g.productions[2] = {1, 0x4009}; });
    struct Case {
        const char* name;
        YaccGrammar grammar;
        std::u16string text;
        int result;
        std::int32_t code;
    };
    const Case cases[] = {
        {"no valid token", ToyGrammar(), u"1 a", 1, 0},
        {"no sync token at the end", marked, u"1 a", 1, 0},
        {"no goto for the left side", noGoto, u"1", -1, 18},
        {"a good text", ToyGrammar(), u"1 2", 0, 0},
    };
    for (const Case& c : cases)
        for (Holding holding : kHoldings) {
            Outcome out = RunToy(c.grammar, c.text, kCyss, std::nullopt, 0, holding, true);
            EXPECT_EQ(out.result, c.result) << c.name;
            EXPECT_EQ(out.code, c.code) << c.name;
        }
}

// The looked-up actions and gotos against the row searches.
constexpr std::uint32_t kEof = 0xFFFFFFFF;
constexpr std::uint32_t kError = 0xFFFFFFFE;

// State 0 holds the entries under test; states 1 to 3 exist as targets.
// padding adds empty states, which takes the table past the size that gets
// looked-up answers.
YaccGrammar LookupGrammar(std::uint32_t padding) {
    YaccGrammar g;
    g.productions = {{2, 0}, {1, 0x4001}};
    YaccRow row;
    row.actions = {
        {Shift(1), 5},    {Reduce(1), 5}, // the first entry for a token decides
        {Accept(), kEof}, {Shift(2), kError}, {Shift(3), 61}, {Shift(1), 62}, {Shift(2), 1000},
        {0, 7},           {Reduce(1), 0},
    };
    row.gotos = {{3, 0x4001}, {1, 0x4001}, {2, 0x401F}, {1, 0x4020}, {2, 0x20}};
    g.rows = {row, {}, {}, {}};
    g.rows.resize(g.rows.size() + padding);
    return g;
}

TEST(ParserLookups, AnswerAsTheRowSearch) {
    struct Case {
        std::uint32_t token;
        std::uint32_t value;
    };
    const Case actions[] = {
        {5, Shift(1)},  {kEof, Accept()}, {kError, Shift(2)}, {61, Shift(3)},
        {62, Shift(1)}, {1000, Shift(2)}, {0, Reduce(1)},     {63, 0},
    };
    struct GotoCase {
        std::uint32_t symbol;
        std::uint32_t target;
    };
    const GotoCase gotos[] = {{0x4001, 3}, {0x4020, 1}, {0x20, 2}, {0x4002, SSYaccTable::kNoGoto}};
    for (std::uint32_t padding : {0u, 1100u}) {
        SCOPED_TRACE(padding);
        SSYaccTable table(BuildYaccTable(LookupGrammar(padding)), "TOY");
        const auto& steps = table.data().actionSteps;
        for (const Case& c : actions) {
            EXPECT_EQ(table.actionValue(0, c.token), c.value) << "token " << c.token;
            // The decoded step, where the table keeps one, is the same action.
            const std::uint32_t slot = SSYaccTable::Data::ActionSlot(c.token);
            if (steps.empty() || slot >= SSYaccTable::Data::kActionSlots)
                continue;
            EXPECT_EQ(StepKind(steps[slot]), ActionKind(c.value)) << "token " << c.token;
            EXPECT_EQ(steps[slot] & kActionArgumentMask, c.value & kActionArgumentMask);
        }
        for (const GotoCase& c : gotos)
            EXPECT_EQ(table.gotoTarget(0, c.symbol), c.target) << "symbol " << c.symbol;
        EXPECT_EQ(table.actionValue(1, 5), 0u);
        EXPECT_EQ(table.gotoTarget(3, 0x4001), SSYaccTable::kNoGoto);
    }
}

} // namespace
} // namespace tervane::test
