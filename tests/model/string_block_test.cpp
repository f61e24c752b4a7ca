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

PieceEntry ParseOne(const std::u16string& text, long number = 7) {
    auto bytes = Block({text});
    std::size_t offset = 0;
    CLabelParser parser;
    return ParseString(bytes, offset, parser, number);
}

// The fixtures' document shows the usual strings; these are the odd ones.
TEST(StringBlock, ParseStringNormalisesAndSplits) {
    const std::pair<std::u16string, std::string> cases[] = {
        {u"", ""},
        {u"Save %s?", "<string id=\"7\">[Save ]{%s}[?]</string>"},
        {u"50% off", "<string id=\"7\">[50]{% o}[ff]</string>"},
        // The parser reads up to the NUL; the units behind it are lost.
        {std::u16string(u"ab\0cd", 5), "<string id=\"7\">[a]</string>"},
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

// A translated stream of two blocks, as the writer gathers it: each block
// takes its own entries, the group's tags stay for the next.
TEST(StringBlock, ExtractAndMergeByPosition) {
    CLabelPieceList stream;
    stream.push_back(MakeOpenTag("resources", "<resources>"));
    stream.push_back(MakeOpenTag("stringtable", "<stringtable>"));
    for (int id : {1, 2, 17}) {
        stream.push_back(MakeText(u"\t\t"));
        stream.push_back(MakeOpenTag("string", "<string id=\"" + std::to_string(id) + "\">"));
        stream.push_back(MakeText(u"T" + std::u16string(1, static_cast<char16_t>(u'0' + id % 10))));
        stream.push_back(MakeCloseTag("string", "</string>"));
    }
    stream.push_back(MakeCloseTag("stringtable", "</stringtable>"));
    CStringBlockResource first, none;
    first.identifierText = "1";
    none.identifierText = "9";
    first.ExtractPieces(stream);
    ASSERT_EQ(first.entries.size(), 2u);
    ASSERT_GE(stream.size(), 4u);
    EXPECT_EQ(TagOf(*stream[3])->tagText, u"<string id=\"17\">");
    none.ExtractPieces(stream);
    EXPECT_TRUE(none.entries.empty());
    EXPECT_EQ(stream.size(), 7u);

    CStringBlockResource source;
    source.entries.push_back(ParseOne(u"one", 0));
    source.entries.push_back(ParseOne(u"two", 1));
    source.MergePieces(none);
    EXPECT_EQ(test::Spell(source.entries[0]), "<string id=\"0\">[one]</string>");
    source.MergePieces(first);
    EXPECT_EQ(test::Spell(source.entries[0]), "[\t\t]<string id=\"1\">[T1]</string>");
    EXPECT_EQ(test::Spell(source.entries[1]), "[\t\t]<string id=\"2\">[T2]</string>");
}

} // namespace
} // namespace tervane
