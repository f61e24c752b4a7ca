// The scan loop on a toy language: longest match, push-back, positions,
// expression lists, keywords and the lexer's errors.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "label/runtime/ss_lex.h"
#include "tests/label/runtime_toy.h"

namespace tervane::test {
namespace {

struct Seen {
    std::uint32_t token;
    std::string text;
    std::uint32_t line;
    std::uint32_t offset;
    bool operator==(const Seen&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Seen& s) {
    return out << "{" << s.token << " '" << s.text << "' " << s.line << ":" << s.offset << "}";
}

std::vector<Seen> Scan(const Image& image, std::u16string_view text) {
    SSLexTable table(image, "TOY");
    SSLexStringConsumer consumer(text);
    SSLex lex(&consumer, &table);
    std::vector<Seen> out;
    while (SSRef<SSLexLexeme> lexeme = lex.nextLexeme())
        out.push_back(
            {lexeme->parseToken(), lexeme->displayText(), lexeme->line(), lexeme->offset()});
    return out;
}

TEST(LexerScan, TokensPositionsAndPushBack) {
    struct Case {
        const char* name;
        std::u16string text;
        std::vector<Seen> expected;
    };
    const std::vector<Case> cases = {
        {"longest match and lists",
         u"ab 12<=> <= \"x y\"z\ncd",
         {{kWord, "ab", 1, 1},
          {kNum, "12", 1, 4},
          {kShip, "<=>", 1, 6},
          {kLess, "<", 1, 10},
          {kEqual, "=", 1, 11},
          {kQuote, "\"", 1, 13},
          {kText, "x y", 1, 14},
          {kEndQuote, "\"", 1, 17},
          {kWord, "z", 1, 18},
          {kNewline, "\n", 1, 19},
          {kWord, "cd", 2, 1}}},
        // The automaton dies at the end of the input in a state that accepts
        // nothing: the text behind the last accepting state is read again.
        {"push-back at the end", u"<=", {{kLess, "<", 1, 1}, {kEqual, "=", 1, 2}}},
        {"push-back inside", u"<=<", {{kLess, "<", 1, 1}, {kEqual, "=", 1, 2}, {kLess, "<", 1, 3}}},
        {"empty text", u"", {}},
        {"longer than the consumer's own room",
         std::u16string(500, u'x') + u" 12 " + std::u16string(300, u'y'),
         {{kWord, std::string(500, 'x'), 1, 1},
          {kNum, "12", 1, 502},
          {kWord, std::string(300, 'y'), 1, 505}}},
        {"byte-order mark FFFE", u"\uFFFEab 1", {{kWord, "ab", 1, 1}, {kNum, "1", 1, 4}}},
    };
    for (const Case& c : cases)
        EXPECT_EQ(Scan(ToyLexImage(), c.text), c.expected) << c.name;
}

Image WithState(std::uint32_t state, const std::function<void(LexState&)>& change,
                const std::vector<Image>& keywords = {}) {
    auto main = ToyMainList();
    change(main[state]);
    return BuildLexTable({BuildList(main), BuildList(ToyQuoteList())}, keywords);
}

TEST(LexerScan, UserValuesAndKeywords) {
    Image userValue = WithState(2, [](LexState& s) {
        s.flags |= 0x400;
        s.userValue = 99;
    });
    EXPECT_EQ(Scan(userValue, u"12 ab"),
              (std::vector<Seen>{{99, "12", 1, 1}, {kWord, "ab", 1, 4}}));
    // An ignore-case entry lower-cases the lexeme in place before comparing,
    // even when the lexeme then matches another entry.
    Image keywords =
        WithState(3, [](LexState& s) { s.flags |= 0x200; },
                  {BuildKeywordTable(
                      {{60, false, "do", 0}, {61, true, "if", 0}, {62, false, "while", 0x77}})});
    EXPECT_EQ(Scan(keywords, u"do while dog wh IF Do"), (std::vector<Seen>{{60, "do", 1, 1},
                                                                           {0x77, "while", 1, 4},
                                                                           {kWord, "dog", 1, 10},
                                                                           {kWord, "wh", 1, 14},
                                                                           {61, "if", 1, 17},
                                                                           {60, "do", 1, 20}}));
}

TEST(LexerErrors, RaisedWhereTheScanMeetsThem) {
    // "#" starts a run that never accepts: the whole run is the invalid text.
    auto main = ToyMainList();
    main[0].moves.insert(main[0].moves.begin() + 3, {0x23, 0x23, 11});
    main.push_back({0, 0, 0, 0, 0, {{0x41, 0x41, 11}}});
    Image deadEnd = BuildLexTable({BuildList(main), BuildList(ToyQuoteList())});
    struct Case {
        const char* name;
        Image image;
        std::u16string text;
        std::int32_t code;
        std::string message;
    };
    const std::vector<Case> cases = {
        {"no transition from the start", ToyLexImage(), u"ab #x", 5,
         "SSLex0105e: Invalid token, Line 1, Offset 4, #"},
        {"bad push index", WithState(4, [](LexState& s) { s.pushIndex = 7; }), u"\"", 6,
         "SSLex0106e: Invalid expression list index, 7"},
        {"pop below the bottom", WithState(9, [](LexState& s) { s.flags |= 0x08; }), u"=", 9,
         "SSLifo0002e: No top, stack empty"},
        {"keyword table that isn't there",
         WithState(3,
                   [](LexState& s) {
                       s.flags |= 0x200;
                       s.keywordIndex = 2;
                   }),
         u"ab", 44, "SSLex0110e: Invalid keyword index, 2"},
        // Only a damaged table accepts the empty text; it would be found
        // again at the same place for ever.
        {"empty match",
         WithState(0,
                   [](LexState& s) {
                       s.token = 70;
                       s.flags = kFinal;
                   }),
         u"a#", 5, "SSLex0105e: Invalid token, Line 1, Offset 2, #"},
        {"message too long", deadEnd, u"#" + std::u16string(600, u'A'), 46,
         "SSException0002e: sprintf msg too long"},
        {"message cut to 127 characters", deadEnd, u"#" + std::u16string(200, u'A'), 5,
         ("SSLex0105e: Invalid token, Line 1, Offset 1, #" + std::string(200, 'A')).substr(0, 127)},
    };
    for (const Case& c : cases)
        EXPECT_EQ(Raised([&] { Scan(c.image, c.text); }), std::make_pair(c.code, c.message))
            << c.name;
}

} // namespace
} // namespace tervane::test
