// Loading table images: damage of every kind raises the table error and never
// reads outside the image; the module's own tables and those of PE files load
// through the resource calls.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "label/runtime/ss_lex_table.h"
#include "label/runtime/ss_yacc.h"
#include "label/runtime/ss_yacc_table.h"
#include "platform/win32/resources.h"
#include "tests/label/runtime_toy.h"
#include "tests/support/fixtures.h"

namespace tervane::test {
namespace {

template <typename Table> std::pair<std::int32_t, std::string> LoadError(const Image& image) {
    return Raised([&] { Table table(image, "TOY"); });
}

const std::string kLexError = "SSLex0104e: Invalid table, TOY";
const std::string kYaccError = "SSYacc0111e: Error reading table, TOY";

Image LexWithKeywords() {
    return BuildLexTable({BuildList(ToyMainList()), BuildList(ToyQuoteList())},
                         {BuildKeywordTable({{60, false, "do", 0}, {61, true, "if", 5}})});
}

// Offsets inside the toy lexer image: the header is 36 bytes, the first list
// follows.
constexpr std::size_t kList0 = 36;

TEST(LexTableLoad, DamageRaisesTheTableError) {
    struct Case {
        const char* name;
        std::function<void(Image&)> damage;
        std::int32_t code; // 0: loads
    };
    const std::size_t keywordAt =
        36 + BuildList(ToyMainList()).size() + BuildList(ToyQuoteList()).size();
    const std::vector<Case> cases = {
        {"header magic 0 is accepted", [](Image& i) { PatchWord(i, 4, 0); }, 0},
        {"header magic", [](Image& i) { PatchWord(i, 4, 0x53534C59); }, 4},
        {"list magic", [](Image& i) { PatchWord(i, kList0, 2); }, 4},
        {"list size below its head", [](Image& i) { PatchWord(i, kList0 + 4, 87); }, 4},
        {"huge state count", [](Image& i) { PatchWord(i, kList0 + 40, 0x40000000); }, 4},
        {"row count past the end",
         [](Image& i) {
             std::size_t row = kList0 + WordAt(i, kList0 + WordAt(i, kList0 + 48));
             PatchWord(i, row, 0x15555556); // 12 times this wraps 32 bits
         },
         4},
        {"move to a missing state",
         [](Image& i) {
             std::size_t row = kList0 + WordAt(i, kList0 + WordAt(i, kList0 + 48));
             PatchWord(i, row + 4 + 8, 11);
         },
         4},
        {"keyword table missing", [](Image& i) { PatchWord(i, 8, 2); }, 4},
        {"keyword text without its end",
         [keywordAt](Image& i) {
             PatchWord(i, keywordAt + 40 + 41 + 17, WordAt(i, keywordAt) - 1);
         },
         4},
    };
    for (const Case& c : cases) {
        Image image = LexWithKeywords();
        c.damage(image);
        auto [code, message] = LoadError<SSLexTable>(image);
        EXPECT_EQ(code, c.code) << c.name;
        if (c.code) {
            EXPECT_EQ(message, kLexError) << c.name;
        }
    }
}

YaccGrammar GrammarWithLookahead() {
    YaccGrammar g = ToyGrammar();
    g.rows[0].actions = {{Lookahead(0), kNum}};
    g.lookaheads = {BuildList({{0, 0, 0, 0, 0, {{kNum, kNum, 1}}}, {1, kFinal, 0, 0, 0, {}}})};
    return g;
}

std::size_t LookaheadSize() {
    return GrammarWithLookahead().lookaheads[0].size();
}

TEST(YaccTableLoad, DamageRaisesTheReadingError) {
    struct Case {
        const char* name;
        std::function<void(YaccGrammar&)> change;
        std::function<void(Image&)> damage;
        std::int32_t code;
    };
    auto none = [](YaccGrammar&) {};
    auto row = [](const Image& i, std::uint32_t state) { return WordAt(i, 20 + 4 * state); };
    const std::vector<Case> cases = {
        {"intact", none, [](Image&) {}, 0},
        {"magic", none, [](Image& i) { PatchWord(i, 0, 2); }, 22},
        {"action count past the end", none,
         [row](Image& i) { PatchWord(i, row(i, 1) + 8, 0x20000000); }, 22},
        {"shift to a missing state", [](YaccGrammar& g) { g.rows[0].actions[0].value = Shift(6); },
         [](Image&) {}, 22},
        {"reduce of a missing production",
         [](YaccGrammar& g) { g.rows[1].actions[0].value = Reduce(4); }, [](Image&) {}, 22},
        {"missing lookahead automaton",
         [](YaccGrammar& g) { g.rows[0].actions[0].value = Lookahead(0); }, [](Image&) {}, 22},
        {"error entry to a missing state",
         [](YaccGrammar& g) {
             g.rows[2].flags = 2;
             g.rows[2].errorState = 6;
         },
         [](Image&) {}, 22},
        {"lookahead automaton damaged", [](YaccGrammar& g) { g = GrammarWithLookahead(); },
         [](Image& i) { PatchWord(i, i.size() - LookaheadSize(), 7); }, 4},
    };
    for (const Case& c : cases) {
        YaccGrammar g = ToyGrammar();
        c.change(g);
        Image image = BuildYaccTable(g);
        c.damage(image);
        auto [code, message] = LoadError<SSYaccTable>(image);
        EXPECT_EQ(code, c.code) << c.name;
        if (c.code) {
            EXPECT_EQ(message, c.code == 22 ? kYaccError : kLexError) << c.name;
        }
    }
}

TEST(TableLoad, EveryTruncationFails) {
    Image lex = LexWithKeywords();
    for (std::size_t size = 0; size < lex.size(); ++size) {
        Image cut(lex.begin(), lex.begin() + static_cast<std::ptrdiff_t>(size));
        ASSERT_EQ(LoadError<SSLexTable>(cut).first, 4) << size;
    }
    for (std::uint32_t magic : {kCyss, 0u}) {
        Image image = BuildYaccTable(GrammarWithLookahead(), magic);
        std::size_t automaton = image.size() - LookaheadSize();
        for (std::size_t size = 0; size < image.size(); ++size) {
            Image cut(image.begin(), image.begin() + static_cast<std::ptrdiff_t>(size));
            ASSERT_EQ(LoadError<SSYaccTable>(cut).first, size < automaton ? 22 : 4)
                << magic << " " << size;
        }
    }
}

// Moves on the first characters are looked up rather than searched: they
// must be what the search of the stored row gives, including a row that
// gives up at the first range above the character.
TEST(TableResources, LookedUpMovesAreTheRowSearchs) {
    for (const char* name : {"StringResParse", "MenuResParse", "DialogResParse"}) {
        SSLexTable table(TervaneModuleHandle(), name, "SSLexTable");
        for (std::uint32_t l = 0; l < table.listCount(); ++l) {
            const SSLexExpressionList& list = *table.expressionList(l);
            for (std::uint32_t state = 0; state < list.stateCount(); ++state) {
                for (std::uint32_t c = 0; c < 0x200; ++c) {
                    std::uint32_t expected = SSLexExpressionList::kNoState;
                    for (std::uint32_t i = 0; i < list.rowLength(state); ++i) {
                        SSLexTransition t = list.rowEntry(state, i);
                        if (c < t.low)
                            break;
                        if (c <= t.high) {
                            expected = t.next;
                            break;
                        }
                    }
                    ASSERT_EQ(list.transition(state, c), expected)
                        << name << " list " << l << " state " << state << " char " << c;
                }
            }
        }
    }
}

// Tables read from the resources of real PE32 and PE32+ files.
TEST(TableResources, WordListParsesFromAFilesResources) {
    for (const std::string& path : FixtureImages("label_tables")) {
        HMODULE module = LoadLibraryExA(path.c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
        ASSERT_NE(module, nullptr) << path;
        {
            SSLexTable lexTable(module, "words", "SSLexTable");
            SSYaccTable yaccTable(module, "WORDS", "SSYACCTABLE");
            SSLexStringConsumer consumer(u"ab  cd e");
            SSLex lex(&consumer, &lexTable);
            RecordingYacc yacc(&lex, &yaccTable);
            EXPECT_EQ(yacc.parse(), 0) << path;
            EXPECT_EQ(yacc.reductions, (std::vector<std::string>{"2:ab", "1:-,cd", "1:-,e"}))
                << path;
        }

        using Error = std::pair<std::int32_t, std::string>;
        EXPECT_EQ(Raised([&] { SSLexTable(module, "DAMAGED", "SSLEXTABLE"); }),
                  Error(4, "SSLex0104e: Invalid table, DAMAGED"));
        EXPECT_EQ(Raised([&] { SSYaccTable(module, "DAMAGED", "SSYACCTABLE"); }),
                  Error(37, "SSYacc0115e: Resource not found, DAMAGED"));
        EXPECT_EQ(Raised([&] { SSLexTable(module, 7, "SSLEXTABLE"); }),
                  Error(36, "SSLex0108e: Resource not found, 7"));
        EXPECT_TRUE(FreeLibrary(module));
    }
}

} // namespace
} // namespace tervane::test
