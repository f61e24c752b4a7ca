// The three label grammars as data. State numbers, tokens and productions are
// those of the stored tables, which callers know by number.
#include "tools/labeltables/automaton.h"

namespace tervane::labeltables {

namespace {

constexpr std::uint32_t kText = 51; // STRING / LABELTEXT
constexpr std::uint32_t k52 = 52;
constexpr std::uint32_t k53 = 53;
constexpr std::uint32_t kShortcut = 54;

const std::u16string kFlags = u" #+-";
const std::u16string kDigits = u"0123456789";
const std::u16string kLetters = u"CEGSXcdefginopsux";
const std::u16string kSizes = u"Lhl";

// State numbers of the conversion automaton, which differ between tables.
struct ConversionStates {
    std::uint32_t percent, flags, width, direct, star, precision, pstar, size, i, i6, i64, end;
};

// %[ #+-]*[0-9]*(\.[0-9]*\*?|\*\.?[0-9]*\*?)?[Lhl]?(I64)?[CEGSXcdefginopsux]
void AddConversion(std::vector<LexState>& states, const ConversionStates& n,
                   std::uint32_t convToken, std::vector<Move> percentExtra) {
    auto tail = [&](std::vector<Move> moves) {
        moves.push_back(On(kLetters, n.end));
        moves.push_back(On(u"I", n.i));
        moves.push_back(On(kSizes, n.size));
        return moves;
    };
    std::vector<Move> percent =
        tail({On(kFlags, n.flags), On(kDigits, n.direct), On(u"*", n.star), On(u".", n.precision)});
    percent.insert(percent.end(), percentExtra.begin(), percentExtra.end());
    states.push_back({n.percent, Token(kText), percent});
    states.push_back({n.flags,
                      {},
                      tail({On(kFlags, n.flags), On(kDigits, n.width), On(u"*", n.star),
                            On(u".", n.precision)})});
    states.push_back(
        {n.width, {}, tail({On(kDigits, n.width), On(u"*", n.star), On(u".", n.precision)})});
    states.push_back({n.direct, Token(convToken),
                      tail({On(kDigits, n.direct), On(u"*", n.star), On(u".", n.precision)})});
    states.push_back({n.star, {}, tail({On(u"*", n.pstar), On(kDigits + u".", n.precision)})});
    states.push_back({n.precision, {}, tail({On(kDigits, n.precision), On(u"*", n.pstar)})});
    states.push_back({n.pstar, {}, tail({})});
    states.push_back({n.size, {}, {On(kLetters, n.end), On(u"I", n.i)}});
    states.push_back({n.i, {}, {On(u"6", n.i6)}});
    states.push_back({n.i6, {}, {On(u"4", n.i64)}});
    states.push_back({n.i64, {}, {On(kLetters, n.end)}});
    states.push_back({n.end, Token(convToken), {}});
}

std::vector<Action> OnAll(std::vector<std::uint32_t> tokens, std::uint32_t production) {
    tokens.push_back(kEof);
    return {{tokens, ActionKind::Reduce, production}};
}

Action Shift(std::uint32_t token, std::uint32_t state) {
    return {{token}, ActionKind::Shift, state};
}
Action Reduce(std::vector<std::uint32_t> tokens, std::uint32_t production) {
    return {std::move(tokens), ActionKind::Reduce, production};
}
Action AcceptOnEof() {
    return {{kEof}, ActionKind::Accept, 0};
}

Grammar StringGrammar() {
    std::vector<LexState> states = {
        {0, Token(kText), {On(u"%", 12), On(u"\\", 14), StartOfInput(16), Other(10)}},
        {10, Token(kText), {Except(u"%\\"), Other(10)}},
        {13, Token(kText), {}},
        {14, Token(kText), {On(u"\\", 17), On(u"bfnrt", 15)}},
        {15, Token(k52), {}},
        {16, IgnoredStart(), {}},
        {17, Token(kText), {On(u"\\", 17)}},
    };
    AddConversion(states, {12, 1, 2, 9, 18, 3, 4, 7, 5, 8, 6, 11}, k53, {On(u"%", 13)});

    // start 0x4002, label 0x4001, pieces 0x4003, piece 0x4004
    const std::vector<std::uint32_t> tokens = {kText, k52, k53};
    ParserGrammar parser;
    parser.productions = {{2, 0},      {1, 0x4002}, {1, 0x4001}, {2, 0x4003},
                          {0, 0x4003}, {1, 0x4004}, {1, 0x4004}, {1, 0x4004}};
    parser.states = {
        {0, OnAll(tokens, 4), {{0x4003, 1}, {0x4001, 2}, {0x4002, 3}}},
        {1, {Reduce({kEof}, 2), Shift(k53, 5), Shift(k52, 6), Shift(kText, 7)}, {{0x4004, 8}}},
        {2, {Reduce({kEof}, 1)}, {}},
        {3, {AcceptOnEof()}, {}},
        {4, {}, {}},
        {5, OnAll(tokens, 6), {}},
        {6, OnAll(tokens, 7), {}},
        {7, OnAll(tokens, 5), {}},
        {8, OnAll(tokens, 3), {}},
    };
    return {"STRINGRESPARSE", {{{states}}}, parser};
}

Grammar MenuGrammar() {
    std::vector<LexState> first = {
        {0,
         {},
         {On(u"%", 11), On(u"&", 13), On(u"+", 15), On(u",", 17), On(u"\\", 19), StartOfInput(20),
          Other(1)}},
        {1, Token(kText), {Except(u"%&+,\\"), Other(1)}},
        {13, Token(k52), {On(u"&", 12)}},
        {14, TokenSwitching(k53, 1), {}},
        {15, Token(kText), {On(u"+", 12)}},
        {16, Token(k52), {}},
        {17, Token(kText), {On(u",", 12)}},
        {18, Token(kText), {On(u"\\", 18)}},
        {19, Token(kText), {On(u"\\", 18), On(u"bfnr", 16), On(u"t", 14)}},
        {20, IgnoredStart(), {}},
    };
    // State 12 ends a conversion and also serves "&&", "++" and ",,".
    AddConversion(first, {11, 3, 2, 10, 21, 4, 6, 7, 5, 9, 8, 12}, kText, {});
    const std::vector<LexState> shortcut = {
        {0, {}, {Except(u"\n"), StartOfInput(2), Other(1)}},
        {1, Token(kShortcut), {Except(u"\n"), Other(1)}},
        {2, IgnoredStart(), {}},
    };

    // start 0x4002, item 0x4001, text 0x4003
    const std::vector<std::uint32_t> afterText = {kText, k52, k53, kEof};
    const std::vector<std::uint32_t> tabOrEof = {k53, kEof};
    ParserGrammar parser;
    parser.productions = {{2, 0},      {1, 0x4002}, {1, 0x4001}, {2, 0x4001},
                          {3, 0x4001}, {2, 0x4001}, {1, 0x4001}, {1, 0x4003},
                          {1, 0x4003}, {2, 0x4003}, {2, 0x4003}};
    parser.states = {
        {0,
         {Shift(k53, 1), Shift(k52, 2), Shift(kText, 3)},
         {{0x4003, 4}, {0x4001, 5}, {0x4002, 6}}},
        {1, {Reduce(tabOrEof, 6), Shift(kShortcut, 12)}, {}},
        {2, {Reduce(afterText, 8)}, {}},
        {3, {Reduce(afterText, 7)}, {}},
        {4, {Reduce(tabOrEof, 2), Shift(k52, 10), Shift(kText, 11)}, {}},
        {5, {Reduce({kEof}, 1), Shift(k53, 8)}, {}},
        {6, {AcceptOnEof()}, {}},
        {7, {}, {}},
        {8, {Reduce(tabOrEof, 3), Shift(kShortcut, 9)}, {}},
        {9, {Reduce(tabOrEof, 4)}, {}},
        {10, {Reduce(afterText, 10)}, {}},
        {11, {Reduce(afterText, 9)}, {}},
        {12, {Reduce(tabOrEof, 5)}, {}},
    };
    return {"MENURESPARSE", {{{first}, {shortcut}}}, parser};
}

Grammar DialogGrammar() {
    std::vector<LexState> states = {
        {0, {}, {On(u"%", 11), On(u"&", 13), On(u"\\", 15), StartOfInput(17), Other(1)}},
        {1, Token(kText), {Except(u"%&\\"), Other(1)}},
        {13, Token(k52), {On(u"&", 14)}},
        {14, Token(kText), {}},
        {15, Token(kText), {On(u"\\", 16), On(u"bfnr", 12)}},
        {16, Token(kText), {On(u"\\", 16)}},
        {17, IgnoredStart(), {}},
    };
    // "%%" shares state 14 with "&&"; state 12 also ends the escapes.
    AddConversion(states, {11, 3, 2, 10, 18, 4, 6, 7, 5, 9, 8, 12}, k53, {On(u"%", 14)});

    // start 0x4002, label 0x4001
    const std::vector<std::uint32_t> tokens = {kText, k52, k53};
    ParserGrammar parser;
    parser.productions = {{2, 0},      {1, 0x4002}, {2, 0x4001}, {2, 0x4001},
                          {2, 0x4001}, {1, 0x4001}, {1, 0x4001}, {1, 0x4001}};
    parser.states = {
        {0, {Shift(k53, 1), Shift(k52, 2), Shift(kText, 3)}, {{0x4001, 4}, {0x4002, 5}}},
        {1, OnAll(tokens, 7), {}},
        {2, OnAll(tokens, 6), {}},
        {3, OnAll(tokens, 5), {}},
        {4, {Reduce({kEof}, 1), Shift(k53, 7), Shift(k52, 8), Shift(kText, 9)}, {}},
        {5, {AcceptOnEof()}, {}},
        {6, {}, {}},
        {7, OnAll(tokens, 4), {}},
        {8, OnAll(tokens, 3), {}},
        {9, OnAll(tokens, 2), {}},
    };
    return {"DIALOGRESPARSE", {{{states}}}, parser};
}

} // namespace

std::vector<Grammar> LabelGrammars() {
    return {StringGrammar(), MenuGrammar(), DialogGrammar()};
}

} // namespace tervane::labeltables
