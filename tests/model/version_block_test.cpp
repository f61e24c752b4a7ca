#include "model/version_block.h"

#include <gtest/gtest.h>

#include "frame/diagnostics/exceptions.h"
#include "model/version_info_resource.h"
#include "tests/model/version_image.h"

namespace tervane {
namespace {

using test::Block;
using test::Str;
using test::Translation;
using test::Var;
using test::VersionImage;

CVersionBlock Parsed(const std::vector<std::uint8_t>& image) {
    CVersionBlock block;
    block.Parse(image);
    return block;
}

TEST(VersionBlock, KeysNormaliseByFirstNameContained) {
    const std::pair<std::u16string, std::u16string> cases[] = {
        {u"My Comments", u"comments"},
        {u"LEGALCOPYRIGHT", u"legalcopyright"},
        // productname comes before productversion, comments before both.
        {u"ProductNameProductVersion", u"productname"},
        {u"ProductVersion Comments", u"comments"},
        {u"PrivateBuild", u"PrivateBuild"},
        {u"", u""},
    };
    for (const auto& [key, normalised] : cases)
        EXPECT_EQ(NormaliseVersionKey(key), normalised) << Narrow(key);
}

TEST(VersionBlock, ReadsEitherOrderOfTheTwoChildren) {
    auto strings = Block(u"StringFileInfo",
                         {Block(u"040904B0", {Str(u"Comments", u""), Str(u"ProductName", u"Ab"),
                                              Str(u"LegalCopyright", u"Abc")})});
    struct Case {
        const char* name;
        std::vector<std::uint8_t> image;
        bool varFirst;
    };
    const Case cases[] = {
        {"vars last", VersionImage({strings, Translation()}), false},
        {"vars first", VersionImage({Translation(), strings}), true},
    };
    for (const Case& c : cases) {
        CVersionBlock block = Parsed(c.image);
        EXPECT_EQ(block.varFirst, c.varFirst) << c.name;
        EXPECT_EQ(block.remaining, 0) << c.name;
        // VarFileInfo behind the strings ends them and is no string itself.
        ASSERT_EQ(block.strings.size(), 3u) << c.name;
        EXPECT_EQ(block.GetValue(u"productname"), u"Ab") << c.name;
        EXPECT_EQ(block.GetValue(u"legalcopyright"), u"Abc") << c.name;
        // The terminator of an empty value is taken as padding with the word behind it.
        EXPECT_EQ(block.strings[0].value, u"") << c.name;
        EXPECT_EQ(block.strings[0].padding.Count(), 2u) << c.name;
        EXPECT_EQ(block.strings[1].padding.Count(), 1u) << c.name;
        ASSERT_EQ(block.vars.size(), 1u) << c.name;
        EXPECT_EQ(block.vars[0].value, (std::vector<std::uint16_t>{0x409, 1200})) << c.name;
        EXPECT_EQ(block.vars[0].padding.Count(), 1u) << c.name;
    }
}

TEST(VersionBlock, FurtherTablesHeadersAreEntries) {
    auto image = VersionImage(
        {Translation(),
         Block(u"StringFileInfo",
               {Block(u"040704E4", {Str(u"ProductName", u"DE"), Str(u"Comments", u"Hallo")}),
                Block(u"040904B0", {Str(u"ProductName", u"EN"), Str(u"PrivateBuild", u"p")})})});
    CVersionBlock block = Parsed(image);
    // The second table's header is one more entry, with an empty value.
    ASSERT_EQ(block.strings.size(), 5u);
    EXPECT_EQ(block.strings[2].key, u"040904B0");
    EXPECT_EQ(block.strings[2].value, u"");
}

// Zero words behind the root, as an aligned resource size leaves them, are
// not taken for the alignment of a further entry.
TEST(VersionBlock, BytesBehindTheRootAreNotRead) {
    auto image = VersionImage(
        {Translation(), Block(u"StringFileInfo", {Block(u"040904B0", {Str(u"Comments", u"Ab")})})});
    ASSERT_EQ(image.size() % 4, 2u);
    image.insert(image.end(), {0, 0, 0, 0, 0, 0});
    CVersionBlock block = Parsed(image);
    EXPECT_EQ(block.remaining, 0);
    EXPECT_EQ(block.GetValue(u"comments"), u"Ab");
}

std::vector<std::uint8_t> StringsImage(std::size_t count, std::size_t keyUnits,
                                       std::size_t valueUnits) {
    std::vector<test::VersionNode> strings;
    for (std::size_t i = 0; i < count; ++i)
        strings.push_back(Str(std::u16string(keyUnits, u'k'), std::u16string(valueUnits, u'v')));
    return VersionImage({Block(u"StringFileInfo", {Block(u"040904B0", strings)}), Translation()});
}

std::vector<std::uint8_t> VarsImage(std::size_t count, std::size_t words) {
    std::vector<test::VersionNode> vars;
    for (std::size_t i = 0; i < count; ++i)
        vars.push_back(Var(u"Translation", std::vector<std::uint16_t>(words, 0x409)));
    return VersionImage({Block(u"VarFileInfo", vars)});
}

// Blocks may end early. Limits count the terminator: a key of 99 units fits 100, one of 100 does
// not.
TEST(VersionBlock, LimitsOfTheModelHoldExactly) {
    struct Case {
        const char* name;
        std::vector<std::uint8_t> image;
        bool fits;
    };
    const Case cases[] = {
        {"fixed information only", VersionImage({}), true},
        {"vars only", VersionImage({Translation()}), true},
        {"50 strings", StringsImage(50, 3, 3), true},
        {"51 strings", StringsImage(51, 3, 3), false},
        {"key of 99", StringsImage(1, 99, 3), true},
        {"key of 100", StringsImage(1, 100, 3), false},
        {"value of 999", StringsImage(1, 3, 999), true},
        {"value of 1000", StringsImage(1, 3, 1000), false},
        {"var of 100 words", VarsImage(1, 100), true},
        {"var of 101 words", VarsImage(1, 101), false},
        {"header key of 49",
         VersionImage({Block(u"StringFileInfo", {Block(std::u16string(49, u'0'), {})})}), true},
        {"header key of 50",
         VersionImage({Block(u"StringFileInfo", {Block(std::u16string(50, u'0'), {})})}), false},
    };
    for (const Case& c : cases) {
        CVersionBlock block;
        if (c.fits)
            EXPECT_NO_THROW(block.Parse(c.image)) << c.name;
        else
            EXPECT_THROW(block.Parse(c.image), CParserException) << c.name;
    }
}

// Vars end where the first one's words run out, whatever follows it.
TEST(VersionBlock, VarsEndByTheFirstLength) {
    CVersionBlock one = Parsed(VarsImage(1, 4));
    ASSERT_EQ(one.vars.size(), 1u);
    EXPECT_EQ(one.vars[0].value.size(), 4u);
    auto twoVars = Block(u"VarFileInfo", {Var(u"Translation", {0x409, 1200}), Var(u"Other", {7})});
    CVersionBlock last = Parsed(VersionImage(
        {Block(u"StringFileInfo", {Block(u"040904B0", {Str(u"Comments", u"c")})}), twoVars}));
    ASSERT_EQ(last.vars.size(), 1u);
    EXPECT_NE(last.remaining, 0);
    EXPECT_EQ(last.GetValue(u"comments"), u"c");
}

// Every cut of a good block, and a root that claims more than there is,
// ends in the exception for a corrupted document.
TEST(VersionBlock, ShortDataIsCorrupted) {
    const std::vector<std::uint8_t> images[] = {
        StringsImage(2, 8, 5),
        VersionImage({Translation(),
                      Block(u"StringFileInfo", {Block(u"040904B0", {Str(u"Comments", u"")})})}),
    };
    for (const auto& image : images) {
        for (std::size_t size = 0; size < image.size(); ++size) {
            CVersionInfoResource resource;
            resource.size = static_cast<DWORD>(size);
            EXPECT_THROW(CVersionInfoCommand().Execute(image, &resource), CParserException) << size;
        }
    }
    // Strings last: a root that claims more than there is reads past the end.
    auto longer = images[1];
    longer[0] = static_cast<std::uint8_t>(longer[0] + 4);
    CVersionInfoResource resource;
    resource.size = static_cast<DWORD>(longer.size());
    EXPECT_THROW(CVersionInfoCommand().Execute(longer, &resource), CParserException);
}

} // namespace
} // namespace tervane
