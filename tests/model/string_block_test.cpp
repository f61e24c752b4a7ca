#include "model/string_block.h"

#include <gtest/gtest.h>

#include "frame/diagnostics/exceptions.h"
#include "label/grammars/label_parser.h"
#include "tests/model/test_images.h"

namespace tervane {
namespace {

// A block image: each string as a count and its UTF-16 units.
std::vector<std::uint8_t> Block(const std::vector<std::u16string>& strings) {
    test::Bytes out;
    for (const auto& s : strings) {
        out.U16(static_cast<std::uint16_t>(s.size()));
        for (char16_t c : s)
            out.U16(c);
    }
    return out.bytes;
}

PieceEntry ParseOne(const std::u16string& text) {
    auto bytes = Block({text});
    std::size_t offset = 0;
    CLabelParser parser;
    return ParseString(bytes, offset, parser, 7);
}

// The fixtures' document shows the usual strings; these are the odd ones.
TEST(StringBlock, ParseStringNormalisesAndSplits) {
    const std::pair<std::u16string, std::string> cases[] = {
        {u"", ""},
        {u"Save %s?", "<string id=\"7\">[Save ]{%s}[?]</string>"},
        {u"50% off", "<string id=\"7\">[50]{% o}[ff]</string>"},
        // The parser reads up to the NUL; the units behind it are lost.
        {std::u16string(u"ab\0cd", 5), "<string id=\"7\">[a]</string>"},
        {std::u16string(u"abcdefghij\0k", 12), "<string id=\"7\">[abcdefghi]</string>"},
        {u"0123456%%89abcdef\\\\ghijklmnop %s",
         "<string id=\"7\">[0123456%89abcdef\\\\ghijklmnop ]{%s}</string>"},
    };
    for (const auto& [text, spelt] : cases)
        EXPECT_EQ(test::Spell(ParseOne(text)), spelt) << spelt;
}

TEST(StringBlock, CountedStringsStayInsideTheData) {
    auto good = Block({u"ab"});
    std::size_t offset = 0;
    EXPECT_EQ(ReadCountedString(good, offset), u"ab");
    EXPECT_EQ(offset, 6u);
    for (std::size_t size : {1u, 3u, 5u}) {
        std::size_t at = 0;
        EXPECT_THROW(ReadCountedString(Bytes(good.data(), size), at), CParserException) << size;
    }
}

// A translated stream of three blocks, with the first and the last string of
// each: block 1 holds strings 0 to 15, block 2 16 to 31.
TEST(StringBlock, ExtractPiecesTakesOnlyItsOwnBlock) {
    CPieceStream stream;
    stream.push_back(MakeOpenTag("stringtable", "<stringtable>"));
    for (int id : {0, 15, 16, 31, 32}) {
        stream.push_back(MakeText(u"\t\t"));
        stream.push_back(MakeOpenTag("string", "<string id=\"" + std::to_string(id) + "\">"));
        stream.push_back(MakeText(u"T"));
        stream.push_back(MakeCloseTag("string", "</string>"));
    }
    stream.push_back(MakeCloseTag("stringtable", "</stringtable>"));
    const std::pair<const char*, std::vector<int>> takes[] = {
        {"1", {0, 15}}, {"9", {}}, {"2", {16, 31}}, {"3", {32}}};
    for (const auto& [block, ids] : takes) {
        CStringBlockResource resource;
        resource.identifierText = block;
        resource.ExtractPieces(stream);
        std::string taken, expected;
        for (const auto& entry : resource.entries)
            taken += test::Spell(entry) + "|";
        for (int id : ids)
            expected += "[\t\t]<string id=\"" + std::to_string(id) + "\">[T]</string>|";
        EXPECT_EQ(taken, expected) << "block " << block;
    }
    EXPECT_EQ(test::Spell(stream), "<stringtable></stringtable>");
}

} // namespace
} // namespace tervane
