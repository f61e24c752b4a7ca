#pragma once
// A toy language for the runtime's tests: words, numbers, "<", "=", "<=>",
// quoted text in a second expression list, blanks ignored; and a grammar of
// number lists with an error production.
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "label/runtime/ss_lex.h"
#include "label/runtime/ss_yacc.h"
#include "tests/label/runtime_table_builder.h"

namespace tervane::test {

enum ToyToken : std::uint32_t {
    kWord = 51,
    kNum = 52,
    kQuote = 53,
    kShip = 54,
    kLess = 55,
    kEqual = 56,
    kText = 57,
    kEndQuote = 58,
    kNewline = 59,
};

// The code and message of what the action raises; code 0 when it raises nothing.
inline std::pair<std::int32_t, std::string> Raised(const std::function<void()>& action) {
    try {
        action();
    } catch (const SSException& e) {
        return {e.code(), e.message()};
    }
    return {0, ""};
}

inline std::vector<LexState> ToyMainList() {
    const std::vector<LexState::Move> start = {
        {0x0A, 0x0A, 10}, {0x20, 0x20, 1}, {0x22, 0x22, 4}, {0x30, 0x39, 2},    {0x3C, 0x3C, 5},
        {0x3D, 0x3D, 9},  {0x41, 0x5A, 3}, {0x61, 0x7A, 3}, {kStart, kStart, 6}};
    return {
        /*0*/ {0, 0, 0, 0, 0, start},
        /*1*/ {50, kFinal | kIgnore, 0, 0, 0, {{0x20, 0x20, 1}}},
        /*2*/ {kNum, kFinal, 0, 0, 0, {{0x30, 0x39, 2}}},
        /*3*/ {kWord, kFinal, 0, 0, 0, {{0x41, 0x5A, 3}, {0x61, 0x7A, 3}}},
        /*4*/ {kQuote, kFinal | 0x20, 1, 0, 0, {}},
        /*5*/ {kLess, kFinal, 0, 0, 0, {{0x3D, 0x3D, 7}}},
        /*6*/ {kStart, kFinal | kIgnore, 0, 0, 0, {}},
        /*7*/ {0, 0, 0, 0, 0, {{0x3E, 0x3E, 8}}},
        /*8*/ {kShip, kFinal, 0, 0, 0, {}},
        /*9*/ {kEqual, kFinal, 0, 0, 0, {}},
        /*10*/ {kNewline, kFinal, 0, 0, 0, {}},
    };
}

inline std::vector<LexState> ToyQuoteList() {
    return {
        {0, 0, 0, 0, 0, {{0, 0x21, 1}, {0x22, 0x22, 2}, {0x23, 0xFFFF, 1}}},
        {kText, kFinal, 0, 0, 0, {{0, 0x21, 1}, {0x23, 0xFFFF, 1}}},
        {kEndQuote, kFinal | 0x08, 0, 0, 0, {}},
    };
}

inline Image ToyLexImage() {
    return BuildLexTable({BuildList(ToyMainList()), BuildList(ToyQuoteList())});
}

inline constexpr std::uint32_t kList = 0x4001;

// 0: start; 1: list : list NUM; 2: list : NUM; 3: list : list %error NUM.
// Words are no part of the language; states that reduce do so on them too,
// so that the error shows in the state behind the list.
inline YaccGrammar ToyGrammar() {
    YaccGrammar g;
    g.productions = {{2, 0}, {2, kList}, {1, kList}, {3, kList}};
    g.rows = {
        {0, {{Shift(1), kNum}}, {{2, kList}}},
        {0, {{Reduce(2), kNum}, {Reduce(2), kWord}, {Reduce(2), kStart}}, {}},
        {0, {{Accept(), kStart}, {Shift(3), kNum}}, {}},
        {0, {{Reduce(1), kNum}, {Reduce(1), kWord}, {Reduce(1), kStart}}, {}},
        {0, {{Shift(5), kNum}}, {}},
        {0, {{Reduce(3), kNum}, {Reduce(3), kWord}, {Reduce(3), kStart}}, {}},
    };
    return g;
}

// A lexer that leaves lexeme texts in the consumer, as the label lexers do.
class ViewLex : public SSLex {
public:
    ViewLex(SSLexConsumer* consumer, const SSLexTable* table) : SSLex(consumer, table) {
        setViews(true);
    }
};

// Records each reduce as "production:text,text" (non-terminals as "-").
class RecordingYacc : public SSYacc {
public:
    using SSYacc::SSYacc;
    std::vector<std::string> reductions;
    std::optional<int> probe; // a symbol index asked for before the others
    void setPlain(std::uint64_t mask) { setPlainProductions(mask); }
    // Elements made only when asked for, and texts read without them.
    void setLazy() { setLazyElements(true); }
    void setEndOnFailure() { setEndOnFailedRecovery(true); }
    bool textsOnly = false;

    SSYaccStackElement* reduce(std::uint32_t production, std::uint32_t size) override {
        if (probe)
            elementFromProduction(*probe);
        std::string entry = std::to_string(production) + ":";
        for (std::uint32_t i = 0; i < size; ++i) {
            entry += i ? "," : "";
            if (textsOnly) {
                std::u16string_view text = elementText(static_cast<std::int32_t>(i));
                entry += text.empty() ? "-" : std::string(text.begin(), text.end());
                continue;
            }
            SSYaccStackElement* element = elementFromProduction(static_cast<std::int32_t>(i));
            entry += element->lexeme ? element->lexeme->displayText() : "-";
        }
        reductions.push_back(entry);
        return textsOnly ? blankElement() : stackElement();
    }
};

} // namespace tervane::test
