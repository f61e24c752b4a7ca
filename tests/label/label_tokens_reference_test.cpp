// Random labels against a reference built straight from the token languages:
// POSIX regular expressions (leftmost-longest) with the longest match across
// a kind's rules, and the type each grammar gives each token.
#include <gtest/gtest.h>
#include <random>
// GCC 12 with the sanitizers warns falsely inside std::regex's automaton.
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#include <regex>
#include <string>
#include <vector>

#include "label/grammars/label_parser.h"
#include "platform/pe/resource_name_text.h"
#include "tests/label/label_token_print.h"

namespace tervane {
namespace {

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
        if (best == 0)
            ADD_FAILURE() << "no rule matches";
        if (best == 0)
            break;
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

} // namespace
} // namespace tervane
