#include "model/version_block.h"
#include "model/version_pieces.h"

#include <gtest/gtest.h>

#include <functional>
#include <tuple>

#include "frame/diagnostics/exceptions.h"
#include "model/version_info_resource.h"
#include "tests/model/test_images.h"

// VS_VERSIONINFO images built in code the way a resource compiler lays them
// out: each node's key and value start on a 4-byte boundary, and its length
// runs to the end of its last child, without the padding behind it.
namespace tervane::test {

struct VersionNode {
    std::u16string key;
    std::uint16_t type = 1;
    std::uint16_t valueLength = 0;
    Bytes value;
    std::vector<VersionNode> children;
};

inline void Write(const VersionNode& node, Bytes& out) {
    out.Align();
    const std::size_t start = out.bytes.size();
    out.U16(0).U16(node.valueLength).U16(node.type).Text(node.key);
    if (!node.value.bytes.empty())
        out.Align();
    out.bytes.insert(out.bytes.end(), node.value.bytes.begin(), node.value.bytes.end());
    for (const VersionNode& child : node.children)
        Write(child, out);
    const std::size_t length = out.bytes.size() - start;
    out.bytes[start] = static_cast<std::uint8_t>(length);
    out.bytes[start + 1] = static_cast<std::uint8_t>(length >> 8);
}

// A String node as a compiler writes it: the value with its terminator.
inline VersionNode Str(std::u16string key, std::u16string value) {
    VersionNode node{std::move(key), 1, static_cast<std::uint16_t>(value.size() + 1), {}, {}};
    node.value.Text(value);
    return node;
}

inline VersionNode Block(std::u16string key, std::vector<VersionNode> children) {
    return VersionNode{std::move(key), 1, 0, {}, std::move(children)};
}

inline VersionNode Var(std::u16string key, const std::vector<std::uint16_t>& words) {
    VersionNode node{std::move(key), 0, static_cast<std::uint16_t>(words.size() * 2), {}, {}};
    for (std::uint16_t word : words)
        node.value.U16(word);
    return node;
}

inline VersionNode Translation() {
    return Block(u"VarFileInfo", {Var(u"Translation", {0x409, 1200})});
}

// The root with its fixed information and the given children.
inline std::vector<std::uint8_t> VersionImage(std::vector<VersionNode> children) {
    VersionNode root{u"VS_VERSION_INFO", 0, 52, {}, std::move(children)};
    for (std::uint32_t value : {0xFEEF04BDu, 0x10000u, 0x10002u, 0x30004u})
        root.value.U32(value);
    root.value.bytes.resize(52);
    Bytes out;
    Write(root, out);
    return out.bytes;
}

} // namespace tervane::test

namespace tervane {
namespace {

using test::Block;
using test::Spell;
using test::Str;
using test::Translation;
using test::Var;
using test::VersionImage;

CVersionBlock Parsed(const std::vector<std::uint8_t>& image) {
    CVersionBlock block;
    block.Parse(image);
    return block;
}

TEST(VersionBlock, ReadsEitherOrderOfTheTwoChildren) {
    auto strings = Block(u"StringFileInfo",
                         {Block(u"040904B0", {Str(u"Comments", u""), Str(u"ProductName", u"Ab"),
                                              Str(u"LegalCopyright", u"Abc")})});
    for (bool varFirst : {false, true}) {
        SCOPED_TRACE(varFirst);
        CVersionBlock block = Parsed(varFirst ? VersionImage({Translation(), strings})
                                              : VersionImage({strings, Translation()}));
        EXPECT_EQ(block.varFirst, varFirst);
        EXPECT_EQ(block.remaining, 0);
        // VarFileInfo behind the strings ends them and is no string itself.
        ASSERT_EQ(block.strings.size(), 3u);
        // The terminator of an empty value is taken as padding with the word behind it.
        EXPECT_EQ(block.strings[0].padding.Count(), 2u);
        ASSERT_EQ(block.vars.size(), 1u);
        EXPECT_EQ(block.vars[0].value, (std::vector<std::uint16_t>{0x409, 1200}));
    }
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

// Each limit holds exactly: one more is a corrupted document. Limits count the
// terminator: a key of 99 units fits 100.
TEST(VersionBlock, LimitsOfTheModelHoldExactly) {
    const auto header = [](std::size_t units) {
        return VersionImage({Block(u"StringFileInfo", {Block(std::u16string(units, u'0'), {})})});
    };
    const std::tuple<const char*, std::function<std::vector<std::uint8_t>(std::size_t)>,
                     std::size_t>
        limits[] = {
            {"strings", [](std::size_t n) { return StringsImage(n, 3, 3); }, 50},
            {"key", [](std::size_t n) { return StringsImage(1, n, 3); }, 99},
            {"value", [](std::size_t n) { return StringsImage(1, 3, n); }, 999},
            {"var words", [](std::size_t n) { return VarsImage(1, n); }, 100},
            {"header key", header, 49},
        };
    for (const auto& [name, image, limit] : limits) {
        // A block of its own for each: a second parse would add to the first's strings.
        CVersionBlock atLimit, beyond;
        EXPECT_NO_THROW(atLimit.Parse(image(limit))) << name;
        EXPECT_THROW(beyond.Parse(image(limit + 1)), CParserException) << name;
    }
    // Blocks may end early.
    EXPECT_NO_THROW(Parsed(VersionImage({})));
    EXPECT_NO_THROW(Parsed(VersionImage({Translation()})));
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

std::string SpellAll(const std::vector<CLabelPieceList>& entries) {
    std::string out;
    for (const auto& entry : entries)
        out += Spell(entry) + "|";
    return out;
}

// The translated stream as the writer gathers it, cut where the input ends.
TEST(VersionPieces, ExtractPiecesTakesEntriesUpToTheGroupsEnd) {
    auto gather = [](bool closed) {
        CPieceStream stream;
        stream.push_back(MakeOpenTag("versioninfo", "<versioninfo>"));
        stream.push_back(MakeText(u"\t\t"));
        for (auto& piece : ParseValue("comments", u"C"))
            stream.push_back(std::move(piece));
        stream.push_back(MakeText(u"\n\t\t"));
        stream.push_back(MakeOpenTag("productname", "<productname>"));
        stream.push_back(MakeText(u"a"));
        if (closed) {
            stream.push_back(MakeCloseTag("productname", "</productname>"));
            stream.push_back(MakeCloseTag("versioninfo", "</versioninfo>"));
        }
        return stream;
    };
    CPieceStream stream = gather(true);
    CVersionInfoResource resource;
    resource.ExtractPieces(stream);
    EXPECT_EQ(SpellAll(resource.entries),
              "[\t\t]<comments>[C]</comments>|[\n\t\t]<productname>[a]</productname>|");
    // The group's tags stay for the next resource.
    EXPECT_EQ(Spell(stream), "<versioninfo></versioninfo>");

    // Without the group's end an open entry stays in the stream.
    stream = gather(false);
    CVersionInfoResource cut;
    cut.ExtractPieces(stream);
    EXPECT_EQ(SpellAll(cut.entries), "[\t\t]<comments>[C]</comments>|");
    EXPECT_EQ(Spell(stream), "<versioninfo>[\n\t\t]<productname>[a]");
}

} // namespace
} // namespace tervane
