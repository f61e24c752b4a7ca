#include "model/version_pieces.h"

#include <gtest/gtest.h>

#include "model/version_info_resource.h"
#include "tests/model/test_images.h"

namespace tervane {
namespace {

using test::Spell;

TEST(VersionPieces, ParseValueMarksOnlyTheLineCharacters) {
    const std::pair<std::u16string, std::string> cases[] = {
        {u"", "<comments></comments>"},
        {u"100% & a\\nb", "<comments>[100% & a\\nb]</comments>"},
        // Carriage return is the \n mark, line feed the \r mark.
        {u"a\r\nb", "<comments>[a]{\\n}{\\r}[b]</comments>"},
        {u"x\n\n", "<comments>[x]{\\r}{\\r}</comments>"},
    };
    for (const auto& [value, spelt] : cases)
        EXPECT_EQ(Spell(ParseValue("comments", value)), spelt) << Narrow(value);
}

// The translated stream as the writer gathers it: white space between tags.
CLabelPieceList Stream() {
    CLabelPieceList stream;
    stream.push_back(MakeOpenTag("resources", "<resources>"));
    stream.push_back(MakeText(u"\n"));
    stream.push_back(MakeOpenTag("versioninfo", "<versioninfo>"));
    stream.push_back(MakeText(u"\t\t"));
    for (auto& piece : ParseValue("comments", u"C"))
        stream.push_back(std::move(piece));
    stream.push_back(std::make_unique<CLabelPiece>()); // neither tag nor text: passed over
    stream.push_back(MakeText(u"\n\t\t"));
    for (auto& piece : ParseValue("productname", u"a\rb"))
        stream.push_back(std::move(piece));
    stream.push_back(MakeText(u"\n"));
    stream.push_back(MakeCloseTag("versioninfo", "</versioninfo>"));
    stream.push_back(MakeCloseTag("resources", "</resources>"));
    return stream;
}

std::string SpellAll(const std::vector<CLabelPieceList>& entries) {
    std::string out;
    for (const auto& entry : entries)
        out += Spell(entry) + "|";
    return out;
}

TEST(VersionPieces, ExtractPiecesTakesEntriesUpToTheGroupsEnd) {
    CLabelPieceList stream = Stream();
    CVersionInfoResource resource;
    resource.ExtractPieces(stream);
    EXPECT_EQ(SpellAll(resource.entries),
              "[\t\t]<comments>[C]</comments>|[\n\t\t]<productname>[a]{\\n}[b]</productname>|");
    // The group's tags stay for the next resource; what lay between went with the entries.
    EXPECT_EQ(Spell(stream), "<resources>[\n]<versioninfo></versioninfo></resources>");

    CVersionInfoResource none;
    none.ExtractPieces(stream);
    EXPECT_TRUE(none.entries.empty());
    EXPECT_EQ(stream.size(), 5u);

    CLabelPieceList other;
    other.push_back(MakeOpenTag("stringtable", "<stringtable>"));
    resource.ExtractPieces(other);
    EXPECT_EQ(other.size(), 1u);
}

TEST(VersionPieces, ExtractPiecesWithoutTheGroupsEndKeepsAnOpenEntry) {
    CLabelPieceList stream;
    stream.push_back(MakeOpenTag("versioninfo", "<versioninfo>"));
    for (auto& piece : ParseValue("comments", u"C"))
        stream.push_back(std::move(piece));
    stream.push_back(MakeOpenTag("productname", "<productname>"));
    stream.push_back(MakeText(u"cut"));
    CVersionInfoResource resource;
    resource.ExtractPieces(stream);
    EXPECT_EQ(SpellAll(resource.entries), "<comments>[C]</comments>|");
    EXPECT_EQ(Spell(stream), "<versioninfo><productname>[cut]");
}

TEST(VersionPieces, MergePiecesReplacesByPosition) {
    CVersionInfoResource source;
    source.entries.push_back(ParseValue("comments", u"one"));
    source.entries.push_back(ParseValue("productname", u"two"));
    CVersionInfoResource empty;
    source.MergePieces(empty);
    EXPECT_EQ(SpellAll(source.entries),
              "<comments>[one]</comments>|<productname>[two]</productname>|");

    CVersionInfoResource translated;
    translated.entries.push_back(ParseValue("comments", u"eins"));
    source.MergePieces(translated);
    EXPECT_EQ(SpellAll(source.entries),
              "<comments>[eins]</comments>|<productname>[two]</productname>|");
    EXPECT_EQ(SpellAll(translated.entries), "<comments>[eins]</comments>|");
}

} // namespace
} // namespace tervane
