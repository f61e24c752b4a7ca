// The parser's looked-up actions and gotos against its row searches.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "label/runtime/ss_yacc_table.h"
#include "tests/label/runtime_toy.h"

namespace tervane::test {
namespace {

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
        {5, Shift(1)},    {kEof, Accept()}, {kError, Shift(2)}, {61, Shift(3)}, {62, Shift(1)},
        {1000, Shift(2)}, {7, 0},           {0, Reduce(1)},     {6, 0},         {63, 0},
        {0x4001, 0},      {kEof - 2, 0},
    };
    struct GotoCase {
        std::uint32_t symbol;
        std::uint32_t target;
    };
    const GotoCase gotos[] = {
        {0x4001, 3},
        {0x401F, 2},
        {0x4020, 1},
        {0x20, 2},
        {0x4000, SSYaccTable::kNoGoto},
        {0x4002, SSYaccTable::kNoGoto},
        {5, SSYaccTable::kNoGoto},
    };
    for (std::uint32_t padding : {0u, 1100u}) {
        SCOPED_TRACE(padding);
        SSYaccTable table(BuildYaccTable(LookupGrammar(padding)), "TOY");
        for (const Case& c : actions)
            EXPECT_EQ(table.actionValue(0, c.token), c.value) << "token " << c.token;
        for (const GotoCase& c : gotos)
            EXPECT_EQ(table.gotoTarget(0, c.symbol), c.target) << "symbol " << c.symbol;
        EXPECT_EQ(table.actionValue(1, 5), 0u);
        EXPECT_EQ(table.gotoTarget(3, 0x4001), SSYaccTable::kNoGoto);
    }
}

} // namespace
} // namespace tervane::test
