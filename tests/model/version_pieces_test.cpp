#include "model/version_pieces.h"

#include <gtest/gtest.h>

#include "model/version_info_resource.h"
#include "tests/model/version_image.h"

namespace tervane {
namespace {

using test::Block;
using test::Str;
using test::Translation;
using test::VersionImage;

// The entry spelt out: texts in brackets, inline tags in braces, other tags as they are.
std::u16string Spell(const CLabelPieceList& entry) {
    std::u16string out;
    for (const auto& piece : entry) {
        if (const auto* text = TextOf(*piece))
            out += u"[" + text->text + u"]";
        else if (const auto* tag = TagOf(*piece))
            out += tag->inlineTag ? u"{" + tag->tagText.str() + u"}" : tag->tagText.str();
    }
    return out;
}

std::string Narrow(const std::u16string& text) {
    return std::string(text.begin(), text.end());
}

TEST(VersionPieces, ParseValueMarksOnlyTheLineCharacters) {
    const std::pair<std::u16string, std::u16string> cases[] = {
        {u"", u"<comments></comments>"},
        {u"100% & more", u"<comments>[100% & more]</comments>"},
        {u"a\\nb", u"<comments>[a\\nb]</comments>"},
        // Carriage return is the \n mark, line feed the \r mark.
        {u"a\r\nb", u"<comments>[a]{\\n}{\\r}[b]</comments>"},
        {u"\r", u"<comments>{\\n}</comments>"},
        {u"x\n\n", u"<comments>[x]{\\r}{\\r}</comments>"},
    };
    for (const auto& [value, spelt] : cases)
        EXPECT_EQ(Spell(ParseValue("comments", value)), spelt) << Narrow(value);
}

TEST(VersionPieces, ExecuteOffersFiveValuesInFixedOrder) {
    using Strings = std::vector<test::VersionNode>;
    struct Case {
        const char* name;
        Strings strings;
        std::u16string spelt; // all entries one behind the other
        LONG hasValues;
    };
    const Case cases[] = {
        {"all five, in file order backwards",
         {Str(u"LegalTrademarks", u"T"), Str(u"ProductName", u"N"), Str(u"ProductVersion", u"V"),
          Str(u"LegalCopyright", u"R"), Str(u"Comments", u"C")},
         u"<comments>[C]</comments><legalcopyright>[R]</legalcopyright>"
         u"<productversion>[V]</productversion><productname>[N]</productname>"
         u"<legaltrademarks>[T]</legaltrademarks>",
         1},
        {"only the description", {Str(u"FileDescription", u"D")}, u"", 0},
        {"others never",
         {Str(u"CompanyName", u"Co"), Str(u"FileVersion", u"1"), Str(u"PrivateBuild", u"p"),
          Str(u"SpecialBuild", u"s"), Str(u"InternalName", u"i"), Str(u"OriginalFilename", u"o")},
         u"",
         0},
        {"empty values give nothing",
         {Str(u"Comments", u""), Str(u"ProductName", u"N"), Str(u"LegalTrademarks", u"")},
         u"<productname>[N]</productname>",
         1},
        {"by substring, the last one wins",
         {Str(u"Comments", u"first"), Str(u"My Comments", u"second")},
         u"<comments>[second]</comments>",
         1},
    };
    for (const Case& c : cases) {
        auto image = VersionImage(
            {Block(u"StringFileInfo", {Block(u"040904B0", c.strings)}), Translation()});
        CVersionInfoResource resource;
        resource.size = static_cast<DWORD>(image.size());
        EXPECT_EQ(CVersionInfoCommand().Execute(image, &resource), &resource);
        std::u16string spelt;
        for (const auto& entry : resource.entries)
            spelt += Spell(entry);
        EXPECT_EQ(spelt, c.spelt) << c.name;
        EXPECT_EQ(resource.hasValues, c.hasValues) << c.name;
        EXPECT_EQ(resource.block.strings.size(), c.strings.size()) << c.name;
    }
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

std::u16string SpellAll(const std::vector<CLabelPieceList>& entries) {
    std::u16string out;
    for (const auto& entry : entries)
        out += Spell(entry) + u"|";
    return out;
}

TEST(VersionPieces, ExtractPiecesTakesEntriesUpToTheGroupsEnd) {
    CLabelPieceList stream = Stream();
    CVersionInfoResource resource;
    resource.ExtractPieces(stream);
    EXPECT_EQ(SpellAll(resource.entries),
              u"[\t\t]<comments>[C]</comments>|[\n\t\t]<productname>[a]{\\n}[b]</productname>|");
    // The group's tags stay for the next resource; what lay between went with the entries.
    EXPECT_EQ(Spell(stream), u"<resources>[\n]<versioninfo></versioninfo></resources>");

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
    EXPECT_EQ(SpellAll(resource.entries), u"<comments>[C]</comments>|");
    EXPECT_EQ(Spell(stream), u"<versioninfo><productname>[cut]");
}

TEST(VersionPieces, MergePiecesReplacesByPosition) {
    CVersionInfoResource source;
    source.entries.push_back(ParseValue("comments", u"one"));
    source.entries.push_back(ParseValue("productname", u"two"));
    CVersionInfoResource empty;
    source.MergePieces(empty);
    EXPECT_EQ(SpellAll(source.entries),
              u"<comments>[one]</comments>|<productname>[two]</productname>|");

    CVersionInfoResource translated;
    translated.entries.push_back(ParseValue("comments", u"eins"));
    source.MergePieces(translated);
    EXPECT_EQ(SpellAll(source.entries),
              u"<comments>[eins]</comments>|<productname>[two]</productname>|");
    EXPECT_EQ(SpellAll(translated.entries), u"<comments>[eins]</comments>|");
}

} // namespace
} // namespace tervane
