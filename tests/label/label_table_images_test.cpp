// The six built-in label tables as the module serves them: sizes, headers and
// the structure that the runtime relies on.
#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>
#include <set>
#include <span>
#include <vector>

#include "platform/win32/resources.h"

namespace {

std::uint32_t Word(std::span<const std::uint8_t> bytes, std::size_t at) {
    EXPECT_LE(at + 4, bytes.size());
    if (at + 4 > bytes.size())
        return 0;
    std::uint32_t value;
    std::memcpy(&value, bytes.data() + at, 4);
    return value;
}

std::span<const std::uint8_t> Table(const char* type, const char* name) {
    HMODULE module = TervaneModuleHandle();
    HRSRC found = FindResourceA(module, name, type);
    if (!found)
        return {};
    HGLOBAL loaded = LoadResource(module, found);
    const auto* data = static_cast<const std::uint8_t*>(LockResource(loaded));
    return {data, SizeofResource(module, found)};
}

struct LexerCase {
    const char* name;
    std::size_t size;
    std::vector<std::uint32_t> listSizes;
    std::vector<std::uint32_t> stateCounts;
};

const LexerCase kLexers[] = {
    {"STRINGRESPARSE", 2872, {2836}, {19}},
    {"MENURESPARSE", 3320, {3028, 256}, {22, 3}},
    {"DIALOGRESPARSE", 2884, {2848}, {19}},
};

TEST(LabelTableImages, LexerTablesHaveTheirSizesAndLayout) {
    for (const LexerCase& c : kLexers) {
        SCOPED_TRACE(c.name);
        const auto table = Table("SSLEXTABLE", c.name);
        ASSERT_EQ(table.size(), c.size);
        EXPECT_EQ(Word(table, 0), c.listSizes.size());
        EXPECT_EQ(std::memcmp(table.data() + 4, "XLSS", 4), 0);
        EXPECT_EQ(Word(table, 8), 0u) << "keyword tables";

        std::size_t at = 36;
        for (std::size_t list = 0; list < c.listSizes.size(); ++list) {
            SCOPED_TRACE(list);
            const auto image = table.subspan(at);
            const std::uint32_t states = c.stateCounts[list];
            EXPECT_EQ(Word(image, 0), 0x53534C58u);
            ASSERT_EQ(Word(image, 4), c.listSizes[list]);
            EXPECT_EQ(Word(image, 40), states);
            EXPECT_EQ(Word(image, 44), c.listSizes[list]);
            EXPECT_EQ(Word(image, 48), 88 + 28 * states);
            EXPECT_EQ(Word(image, 52), 88u);
            at += c.listSizes[list];
        }
        EXPECT_EQ(at, c.size);
    }
}

// Rows sorted and disjoint, targets inside the list, only the three flag
// values, and start-of-input leading to an ignored state from state 0.
TEST(LabelTableImages, LexerRowsAreWellFormed) {
    for (const LexerCase& c : kLexers) {
        SCOPED_TRACE(c.name);
        const auto table = Table("SSLEXTABLE", c.name);
        ASSERT_EQ(table.size(), c.size);
        std::size_t at = 36;
        for (std::size_t list = 0; list < c.listSizes.size(); ++list) {
            const auto image = table.subspan(at, c.listSizes[list]);
            const std::uint32_t states = Word(image, 40);
            const std::uint32_t rowIndex = Word(image, 48);
            for (std::uint32_t s = 0; s < states; ++s) {
                SCOPED_TRACE(s);
                const std::uint32_t flags = Word(image, 88 + 28 * s + 8);
                EXPECT_TRUE(flags == 0 || flags == 0x10 || flags == 0x50 || flags == 0x38);
                const std::uint32_t row = Word(image, rowIndex + 4 * s);
                const std::uint32_t count = Word(image, row);
                ASSERT_LE(row + 4 + 12ull * count, image.size());
                std::uint64_t previousHigh = 0;
                for (std::uint32_t t = 0; t < count; ++t) {
                    const std::uint32_t low = Word(image, row + 4 + 12 * t);
                    const std::uint32_t high = Word(image, row + 8 + 12 * t);
                    const std::uint32_t next = Word(image, row + 12 + 12 * t);
                    EXPECT_LE(low, high);
                    if (t > 0) {
                        EXPECT_GT(low, previousHigh);
                    }
                    previousHigh = high;
                    EXPECT_LT(next, states);
                    if (low == 0xFFFFFFFF) {
                        EXPECT_EQ(s, 0u);
                        EXPECT_EQ(Word(image, 88 + 28 * next), 0xFFFFFFFFu);
                        EXPECT_EQ(Word(image, 88 + 28 * next + 8), 0x50u);
                    }
                }
            }
            at += c.listSizes[list];
        }
    }
}

struct ParserCase {
    const char* name;
    std::size_t size;
    std::uint32_t productions;
    std::uint32_t states;
};

TEST(LabelTableImages, ParserTablesHaveTheirSizesAndLayout) {
    const ParserCase cases[] = {
        {"STRINGRESPARSE", 468, 8, 9},
        {"MENURESPARSE", 628, 11, 13},
        {"DIALOGRESPARSE", 516, 8, 10},
    };
    for (const ParserCase& c : cases) {
        SCOPED_TRACE(c.name);
        const auto table = Table("SSYACCTABLE", c.name);
        ASSERT_EQ(table.size(), c.size);
        EXPECT_EQ(std::memcmp(table.data(), "CYSS", 4), 0);
        EXPECT_EQ(Word(table, 4), c.productions) << "and no lookahead automata";
        EXPECT_EQ(Word(table, 8), c.states);
        const std::uint32_t productions = Word(table, 16);
        EXPECT_EQ(productions, 20 + 4 * c.states);
        EXPECT_EQ(Word(table, 12), productions + 8 * c.productions);
        EXPECT_EQ(Word(table, productions), 2u) << "augmented start";
        EXPECT_EQ(Word(table, productions + 4), 0u);

        // Rows back to back, no recovery flags, the last one ending the image.
        std::uint32_t expected = Word(table, 12);
        for (std::uint32_t s = 0; s < c.states; ++s) {
            SCOPED_TRACE(s);
            const std::uint32_t row = Word(table, 20 + 4 * s);
            ASSERT_EQ(row, expected);
            EXPECT_EQ(Word(table, row), 0u);
            expected = row + 12 + 8 * (Word(table, row + 4) + Word(table, row + 8));
        }
        EXPECT_EQ(expected, c.size);
    }
}

TEST(LabelTableImages, ModuleListsExactlySixTables) {
    for (const char* type : {"SSLEXTABLE", "SSYACCTABLE"}) {
        std::set<std::string> names;
        EnumResourceNamesA(
            TervaneModuleHandle(), type,
            [](HMODULE, const ResName&, const ResName& name, LONG_PTR param) -> BOOL {
                reinterpret_cast<std::set<std::string>*>(param)->insert(name.Name());
                return TRUE;
            },
            reinterpret_cast<LONG_PTR>(&names));
        EXPECT_EQ(names,
                  (std::set<std::string>{"DIALOGRESPARSE", "MENURESPARSE", "STRINGRESPARSE"}))
            << type;
    }
}

} // namespace
