#include <gtest/gtest.h>

#include <map>

#include "frame/diagnostics/exceptions.h"
#include "model/string_block.h"
#include "tests/backward/round_trip.h"

namespace tervane {
namespace {

using test::ConversionMode;
using test::Pieces;

// The counted strings of a block, by their place.
std::vector<std::u16string> Strings(const std::vector<std::uint8_t>& bytes) {
    std::vector<std::u16string> out;
    std::size_t at = 0;
    while (at + 2 <= bytes.size()) {
        const std::size_t count = bytes[at] | bytes[at + 1] << 8;
        at += 2;
        std::u16string text;
        for (std::size_t i = 0; i < count; ++i, at += 2)
            text += static_cast<char16_t>(bytes[at] | bytes[at + 1] << 8);
        out.push_back(text);
    }
    return out;
}

CLabelPieceList EntriesOf(const CStringBlockResource& block) {
    CLabelPieceList pieces;
    for (const PieceEntry& entry : block.entries)
        for (const auto& piece : entry)
            pieces.push_back(ClonePiece(*piece));
    return pieces;
}

std::string Spelt(const CStringBlockResource& block) {
    std::string out;
    for (const PieceEntry& entry : block.entries)
        out += test::Spell(entry);
    return out;
}

TEST(StringBlockRebuild, UnchangedPiecesGiveTheSourceBlock) {
    for (const std::string& path : test::FixtureImages("fwd_strings")) {
        test::SourceFile source(path);
        for (auto& resource : source.Resources()) {
            auto* block = dynamic_cast<CStringBlockResource*>(resource.get());
            if (block == nullptr)
                continue;
            SCOPED_TRACE(path + " block " + block->identifierText);
            test::Merge(*block, test::GroupStream(*block, EntriesOf(*block)));
            const auto written = test::Rebuild(*block);
            ASSERT_EQ(written.size(), 1u);
            EXPECT_EQ(written[0].type, 6);
            EXPECT_EQ(written[0].identifier, block->identifierText);
            EXPECT_EQ(written[0].language, 0x407);
            const auto original = source.BytesOf(*block);
            EXPECT_EQ(Strings(written[0].bytes).size(), 16u);
            if (block->identifierText == "1" && block->language == 0x409) {
                // "a&&b" comes back as "a&b": a string table's '&' is plain
                // text, so both read the same.
                EXPECT_NE(written[0].bytes, original);
                CStringBlockResource again;
                again.identifierText = "1";
                again.size = static_cast<DWORD>(written[0].bytes.size());
                CStringBlockCommand().Execute(written[0].bytes, &again);
                EXPECT_EQ(Spelt(again), Spelt(*block));
            } else {
                EXPECT_EQ(written[0].bytes, original);
            }
        }
    }
}

struct TextCase {
    const char* name;
    std::string block;
    std::u16string stream;
    DWORD mode;
    std::map<int, std::u16string> strings; // place in the block: text; all others empty
    std::string error;                     // the text of the exception, if one
};

const std::string kTrailer = kVerificationTrailer;
const std::u16string kLongest(4096, u'x');

TEST(StringBlockRebuild, TranslatedTextsAndTheirLimits) {
    const TextCase cases[] = {
        {"longer, accented, printf kept",
         "1",
         u"<string id=\"1\">[Änderungen an ]{%s}[ speichern?]</string>"
         u"<string id=\"2\">[ ]</string><string id=\"3\">[100% von ]{%d}</string>"
         u"<string id=\"4\">[a&b]</string><string id=\"5\">[back\\slash]</string>"
         u"<string id=\"6\">[Zeile eins]{\\r}{\\n}[Zeile zwei]</string>",
         1,
         {{1, u"Änderungen an %s speichern?"},
          {2, u" "},
          {3, u"100%% von %d"},
          {4, u"a&b"},
          {5, u"back\\slash"},
          {6, u"Zeile eins\r\nZeile zwei"}},
         ""},
        {"the first string of a block",
         "3",
         u"<string id=\"32\">[erste]</string>",
         1,
         {{0, u"erste"}},
         ""},
        {"the last string of a block",
         "3",
         u"<string id=\"47\">[letzte]</string>",
         1,
         {{15, u"letzte"}},
         ""},
        {"at the limit",
         "3",
         u"<string id=\"37\">[" + kLongest + u"]</string>",
         1,
         {{5, kLongest}},
         ""},
        {"one beyond, cut in a preview",
         "3",
         u"<string id=\"37\">[" + kLongest + u"y]</string>",
         0,
         {{5, kLongest}},
         ""},
        {"one beyond, an error in a final conversion",
         "3",
         u"<string id=\"37\">[" + kLongest + u"y]</string>",
         1,
         {},
         "Error: Length of translated text is longer than the allowed 4096 characters (string "
         "id = 37 ,control name = 'string' & id = 37).\n" +
             kTrailer},
        {"an empty text",
         "3",
         u"<string id=\"37\"></string>",
         0,
         {},
         "Error: There is no text between the opening and the closing tag (string resource \n"
         "control 'string' id = '37').\n" +
             kTrailer},
        {"a text of inline tags alone",
         "3",
         u"<string id=\"37\">{%d}</string>",
         1,
         {{5, u"%d"}},
         ""},
    };
    for (const TextCase& c : cases) {
        SCOPED_TRACE(c.name);
        ConversionMode mode(c.mode);
        test::SourceFile source(test::FixturePath("fwd_strings", "x64"));
        auto& block = static_cast<CStringBlockResource&>(source.Find(6, c.block));
        test::Merge(block, test::GroupStream(block, Pieces(c.stream)));
        if (!c.error.empty()) {
            try {
                test::Rebuild(block);
                ADD_FAILURE() << "no error";
            } catch (const CVerificationException& e) {
                EXPECT_EQ(e.message, c.error);
                EXPECT_STREQ(e.className, "CUpdateVisitor");
            }
            continue;
        }
        const auto written = test::Rebuild(block);
        ASSERT_EQ(written.size(), 1u);
        const auto strings = Strings(written[0].bytes);
        ASSERT_EQ(strings.size(), 16u);
        for (int i = 0; i < 16; ++i) {
            auto expected = c.strings.find(i);
            EXPECT_EQ(Narrow(strings[i]),
                      Narrow(expected == c.strings.end() ? u"" : expected->second))
                << "place " << i;
        }
    }
}

// An Error goes to the messages as well, without the trailer.
TEST(StringBlockRebuild, AnEmptyTextIsAlsoAMessage) {
    ConversionMode mode(1);
    test::SourceFile source(test::FixturePath("fwd_strings", "x86"));
    auto& block = static_cast<CStringBlockResource&>(source.Find(6, "3"));
    test::Merge(block, test::GroupStream(block, Pieces(u"<string id=\"37\"></string>")));
    EXPECT_THROW(test::Rebuild(block), CVerificationException);
    EXPECT_EQ(mode.Messages(),
              std::vector<std::string>{"Error: There is no text between the opening and the "
                                       "closing tag (string resource \ncontrol 'string' id = "
                                       "'37').\n"});
}

} // namespace
} // namespace tervane
