#include "model/string_block.h"

#include <gtest/gtest.h>

#include "frame/diagnostics/exceptions.h"
#include "label/grammars/label_parser.h"
#include "label/pieces/label_piece.h"

namespace tervane {
namespace {

// A block image: each string as a count and its UTF-16 units.
std::vector<std::uint8_t> Block(const std::vector<std::u16string>& strings) {
    std::vector<std::uint8_t> bytes;
    auto put = [&](char16_t unit) {
        bytes.push_back(static_cast<std::uint8_t>(unit));
        bytes.push_back(static_cast<std::uint8_t>(unit >> 8));
    };
    for (const auto& s : strings) {
        put(static_cast<char16_t>(s.size()));
        for (char16_t c : s)
            put(c);
    }
    return bytes;
}

// The entry spelt out: texts as they are, tags in brackets.
std::u16string Spell(const PieceEntry& entry) {
    std::u16string out;
    for (const auto& piece : entry) {
        if (const auto* text = TextOf(*piece))
            out += u"[" + text->text + u"]";
        else if (const auto* tag = TagOf(*piece))
            out += tag->inlineTag ? u"{" + tag->tagText.str() + u"}" : tag->tagText.str();
    }
    return out;
}

PieceEntry ParseOne(const std::u16string& text, long number = 7) {
    auto bytes = Block({text});
    std::size_t offset = 0;
    CLabelParser parser;
    return ParseString(bytes, offset, parser, number);
}

TEST(StringBlock, ParseStringNormalisesAndSplits) {
    struct Case {
        std::u16string text;
        std::u16string spelt;
    };
    const Case cases[] = {
        {u"", u""},
        {u" ", u"<string id=\"7\">[ ]</string>"},
        {u"Save %s?", u"<string id=\"7\">[Save ]{%s}[?]</string>"},
        {u"100%% of %d", u"<string id=\"7\">[100% of ]{%d}</string>"},
        {u"a&&b", u"<string id=\"7\">[a&b]</string>"},
        {u"a\\b", u"<string id=\"7\">[a\\b]</string>"},
        {u"one\r\ntwo", u"<string id=\"7\">[one]{\\r}{\\n}[two]</string>"},
        {u"50% off", u"<string id=\"7\">[50]{% o}[ff]</string>"},
        {u"ends %d", u"<string id=\"7\">[ends ]{%d}</string>"},
        // The parser reads up to the NUL; the units behind it are lost.
        {std::u16string(u"ab\0cd", 5), u"<string id=\"7\">[a]</string>"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(Spell(ParseOne(c.text)), c.spelt) << std::string(c.text.begin(), c.text.end());
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

TEST(StringBlock, ExecuteNumbersByBlockAndPlace) {
    std::vector<std::u16string> strings(16);
    strings[5] = u"five";
    strings[15] = u"last";
    auto bytes = Block(strings);
    bytes.resize(bytes.size() + 4); // padding reads as two more empty strings
    CStringBlockResource block;
    block.identifierText = "3";
    block.size = static_cast<DWORD>(bytes.size());
    CStringBlockCommand().Execute(bytes, &block);
    ASSERT_EQ(block.entries.size(), 2u);
    EXPECT_EQ(GetStringNumber(block.entries[0]), 37);
    EXPECT_EQ(GetStringNumber(block.entries[1]), 47);

    CStringBlockResource broken;
    broken.identifierText = "1";
    std::vector<std::uint8_t> cut = {9, 0, 'a', 0};
    broken.size = 4;
    EXPECT_THROW(CStringBlockCommand().Execute(cut, &broken), CParserException);
}

TEST(StringBlock, StringNumberOfAnEntry) {
    PieceEntry entry;
    EXPECT_EQ(GetStringNumber(entry), 0);
    entry.push_back(MakeInlineTag(u"\"5\""));
    entry.push_back(MakeOpenTag("string", "<string id=\"42\">"));
    EXPECT_EQ(GetStringNumber(entry), 42);
    PieceEntry unquoted;
    unquoted.push_back(MakeOpenTag("string", "<string id=42>"));
    EXPECT_EQ(GetStringNumber(unquoted), 0);
}

// A translated stream of two blocks, as the writer gathers it.
CLabelPieceList Stream() {
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
    return stream;
}

TEST(StringBlock, ExtractPiecesTakesOnlyItsOwnBlock) {
    CLabelPieceList stream = Stream();
    CStringBlockResource first;
    first.identifierText = "1";
    first.ExtractPieces(stream);
    ASSERT_EQ(first.entries.size(), 2u);
    EXPECT_EQ(GetStringNumber(first.entries[1]), 2);
    // The group's tag stays at the head, the next block's entry behind it.
    ASSERT_GE(stream.size(), 3u);
    EXPECT_EQ(TagOf(*stream[1])->tagText, u"<stringtable>");
    EXPECT_EQ(TagOf(*stream[3])->tagText, u"<string id=\"17\">");

    CStringBlockResource second;
    second.identifierText = "2";
    second.ExtractPieces(stream);
    ASSERT_EQ(second.entries.size(), 1u);
    ASSERT_EQ(stream.size(), 3u);
    EXPECT_EQ(TagOf(*stream.back())->tagText, u"</stringtable>");

    CStringBlockResource none;
    none.identifierText = "9";
    none.ExtractPieces(stream);
    EXPECT_TRUE(none.entries.empty());
    EXPECT_EQ(stream.size(), 3u);
}

TEST(StringBlock, MergePiecesReplacesByPosition) {
    CStringBlockResource source;
    source.entries.push_back(ParseOne(u"one", 0));
    source.entries.push_back(ParseOne(u"two", 1));
    CStringBlockResource empty;
    source.MergePieces(empty);
    EXPECT_EQ(Spell(source.entries[1]), u"<string id=\"1\">[two]</string>");
    CStringBlockResource translated;
    translated.entries.push_back(ParseOne(u"eins", 0));
    source.MergePieces(translated);
    EXPECT_EQ(Spell(source.entries[0]), u"<string id=\"0\">[eins]</string>");
    EXPECT_EQ(Spell(source.entries[1]), u"<string id=\"1\">[two]</string>");
}

} // namespace
} // namespace tervane
