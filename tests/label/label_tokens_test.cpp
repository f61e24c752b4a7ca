// Tokens of labels of the three kinds, in the escaped input form, through the
// built-in tables and the runtime: against the token languages, and by one
// parser used for many labels; and the unescaping of their text runs.
#include <gtest/gtest.h>
#include <random>
// GCC 12 with the sanitizers warns falsely inside std::regex's automaton.
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#include <regex>
#include <string>
#include <vector>

#include "label/grammars/label_parser.h"
#include "label/grammars/token_pieces.h"
#include "platform/pe/resource_name_text.h"

namespace tervane {

// Readable tokens in failures: type and UTF-8 text.
inline void PrintTo(const LabelToken& token, std::ostream* out) {
    *out << token.type << " [" << pe::Utf16ToUtf8(token.text) << "]";
}

namespace {

// Random labels against a reference built straight from the token languages:
// POSIX regular expressions (leftmost-longest) with the longest match across
// a kind's rules, and the type each grammar gives each token.
const std::wstring kConv =
    LR"(%[ #+-]*[0-9]*(\.[0-9]*\*?|\*\.?[0-9]*\*?)?[Lhl]?(I64)?[CEGSXcdefginopsux])";
const std::wstring kPos = LR"(%[0-9]+)";

struct Rule {
    std::wregex language;
    std::uint32_t type;
};

std::vector<Rule> Rules(LabelKind kind) {
    auto rule = [](const std::wstring& language, std::uint32_t type) {
        return Rule{std::wregex(language, std::regex::extended), type};
    };
    switch (kind) {
    case LabelKind::String:
        return {rule(LR"([^%\\]+|%|%%|\\+)", 1), rule(LR"(\\[bfnrt])", 2),
                rule(kConv + L"|" + kPos, 8)};
    case LabelKind::Dialog:
        return {rule(LR"([^%&\\]+|%|%%|&&|\\+)", 1), rule(L"&", 3),
                rule(kConv + L"|" + kPos + LR"(|\\[bfnr])", 2)};
    case LabelKind::Menu:
        return {rule(LR"([^%&+,\\]+|%|)" + kConv + L"|" + kPos + LR"(|&&|\+|\+\+|,|,,|\\+)", 1),
                rule(LR"(&|\\[bfnr])", 3), rule(LR"(\\t)", 5)};
    }
    return {};
}

// Tokens up to and including a menu's first tab; the rest of a menu is its
// shortcut, returned in *shortcut.
LabelTokenList Reference(LabelKind kind, const std::u16string& label, std::u16string* shortcut) {
    const std::vector<Rule> rules = Rules(kind);
    const std::wstring text(label.begin(), label.end());
    LabelTokenList tokens;
    std::size_t at = 0;
    while (at < text.size()) {
        std::size_t best = 0;
        std::uint32_t type = 0;
        for (const Rule& rule : rules) {
            std::wsmatch match;
            if (std::regex_search(text.cbegin() + at, text.cend(), match, rule.language,
                                  std::regex_constants::match_continuous) &&
                static_cast<std::size_t>(match.length(0)) > best) {
                best = match.length(0);
                type = rule.type;
            }
        }
        if (best == 0) {
            ADD_FAILURE() << "no rule matches";
            break;
        }
        tokens.push_back({type, label.substr(at, best)});
        at += best;
        if (kind == LabelKind::Menu && type == 5) {
            *shortcut = label.substr(at);
            break;
        }
    }
    return tokens;
}

std::u16string RandomLabel(std::mt19937& random) {
    // Characters that the languages treat specially, and some that they don't.
    static const std::u16string alphabet =
        u"%%%\\\\&&++,,.* #-0123456789ILlh64tbnrfdsSxupgCEXaZ\u00e9\u4e2d\t\r";
    std::uniform_int_distribution<std::size_t> length(0, 14), pick(0, alphabet.size() - 1);
    std::u16string label;
    for (std::size_t n = length(random); n > 0; --n)
        label += alphabet[pick(random)];
    return label;
}

TEST(LabelTokensReference, RandomLabelsGiveTheLanguagesTokens) {
    std::mt19937 random(20261123);
    for (LabelKind kind : {LabelKind::String, LabelKind::Menu, LabelKind::Dialog}) {
        for (int i = 0; i < 600; ++i) {
            const std::u16string label = RandomLabel(random);
            SCOPED_TRACE(pe::Utf16ToUtf8(label));
            std::u16string shortcut;
            LabelTokenList expected = Reference(kind, label, &shortcut);
            LabelTokenList tokens = ParseLabel(kind, label);
            if (kind == LabelKind::Menu && !shortcut.empty()) {
                // The shortcut's split: key names and one-character separators
                // that join back to its text.
                ASSERT_GT(tokens.size(), expected.size());
                std::u16string joined;
                for (std::size_t t = expected.size(); t < tokens.size(); ++t) {
                    const LabelToken& token = tokens[t];
                    EXPECT_TRUE(token.type == 1 || (token.type == 3 && token.text.size() == 1 &&
                                                    (token.text == u"+" || token.text == u",")));
                    joined += token.text;
                }
                EXPECT_EQ(joined, shortcut);
                tokens.resize(expected.size());
            }
            ASSERT_EQ(tokens, expected) << static_cast<int>(kind);
        }
    }
}

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

// Texts outside the random alphabet, and where a shortcut splits.
TEST(LabelTokens, TextsOutsideTheRandomAlphabetAndShortcutSplits) {
    const LabelTokenList go = {{1, u"Go"}, {5, u"\\t"}};
    auto shortcut = [&go](std::u16string keys, LabelTokenList split) {
        split.insert(split.begin(), go.begin(), go.end());
        return TokenCase{M, u"Go\\t" + keys, split};
    };
    Check({
        {S, u"50% off", {{1, u"50"}, {8, u"% o"}, {1, u"ff"}}},
        {S, u"\uFEFF%d \u4e2d", {{8, u"%d"}, {1, u" \u4e2d"}}},
        // The escaped form has no line feed; a raw one stops the shortcut's lexer.
        {M, u"Go\\tCtrl+\nX", {{1, u"Go"}}},
        shortcut(u"Ctrl++", {{1, u"Ctrl"}, {3, u"+"}, {1, u"+"}}),
        shortcut(u"Ctrl+", {{1, u"Ctrl+"}}),
        shortcut(u"A+,B", {{1, u"A"}, {3, u"+"}, {1, u",B"}}),
    });
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
        {M, u"&Open...\\tCtrl+O"},
        {M, u"Go\\tkey\nmore"}, // raises inside the shortcut list
        {D, u"%d%% &Done\\r\\n"},
        {S, u""},
    };
    CLabelParser parser;
    for (const Label& label : labels) {
        LabelTokenList list;
        ASSERT_EQ(parser.Initialise(label.kind), 0);
        parser.Parse(label.text, list);
        EXPECT_EQ(list, ParseLabel(label.kind, label.text)) << pe::Utf16ToUtf8(label.text);
    }
}

// Every text of up to six units over the escaped characters and a letter
// gives what the replacements give one after the other.
TEST(TokenPieces, OnePassUnescapingMatchesTheReplacementsInTurn) {
    auto replaceAll = [](std::u16string text, std::u16string_view from, std::u16string_view to) {
        std::u16string out;
        std::size_t at = 0;
        for (std::size_t found; (found = text.find(from, at)) != std::u16string::npos;
             at = found + from.size())
            out.append(text, at, found - at).append(to);
        return out.append(text, at);
    };
    const std::u16string alphabet = u"\\%&a";
    for (LabelKind kind : {LabelKind::String, LabelKind::Menu, LabelKind::Dialog}) {
        std::vector<std::u16string> texts = {u""};
        for (std::size_t first = 0; first < texts.size(); ++first) {
            if (texts[first].size() == 6)
                continue;
            for (char16_t c : alphabet)
                texts.push_back(texts[first] + c);
        }
        for (const std::u16string& text : texts) {
            std::u16string expected = replaceAll(text, u"\\\\", u"\\");
            if (kind != LabelKind::Menu)
                expected = replaceAll(expected, u"%%", u"%");
            if (kind != LabelKind::String)
                expected = replaceAll(expected, u"&&", u"&");
            std::u16string appended = u"x";
            AppendUnescapedLabelText(appended, text, kind);
            ASSERT_EQ(appended, u"x" + expected) << pe::Utf16ToUtf8(text);
        }
    }
}

} // namespace
} // namespace tervane
