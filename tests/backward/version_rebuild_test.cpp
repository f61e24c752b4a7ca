#include <gtest/gtest.h>

#include <functional>
#include <map>

#include "frame/diagnostics/exceptions.h"
#include "model/version_info_resource.h"
#include "tests/backward/round_trip.h"

namespace tervane {
namespace {

using test::ConversionMode;
using test::kTrailer;

// Walks a block by its lengths, as the system's version calls do: every
// node's children fill its length exactly. The string values by key.
struct LengthWalk {
    explicit LengthWalk(const std::vector<std::uint8_t>& bytes) : b(bytes) {}

    WORD Word(std::size_t at) const { return static_cast<WORD>(b.at(at) | b.at(at + 1) << 8); }
    static std::size_t Aligned(std::size_t at) { return (at + 3) & ~std::size_t{3}; }

    // The node at at, with its children; false where a length does not fit.
    bool Node(std::size_t at, std::size_t end, int depth) {
        const std::size_t length = Word(at);
        const std::size_t valueLength = Word(at + 2);
        const bool isText = Word(at + 4) == 1;
        if (length < 6 || at + length > end)
            return false;
        std::size_t p = at + 6;
        std::u16string key;
        for (WORD unit; (unit = Word(p)) != 0; p += 2)
            key += static_cast<char16_t>(unit);
        p = Aligned(p + 2);
        std::u16string value;
        if (depth == 3) {
            for (std::size_t i = 0; isText && i + 1 < valueLength; ++i)
                value += static_cast<char16_t>(Word(p + 2 * i));
            values[Narrow(key)] = Narrow(value);
        }
        p = Aligned(p + valueLength * (isText ? 2 : 1));
        while (p < at + length) {
            if (!Node(p, at + length, depth + 1))
                return false;
            p = Aligned(p + Word(p));
        }
        return true;
    }

    const std::vector<std::uint8_t>& b;
    std::map<std::string, std::string> values;
};

std::map<std::string, std::string> WalkedValues(const std::vector<std::uint8_t>& bytes) {
    LengthWalk walk(bytes);
    EXPECT_TRUE(walk.Node(0, bytes.size(), 0)) << "lengths out of step";
    EXPECT_EQ(walk.Word(0), bytes.size()) << "root length";
    return walk.values;
}

TEST(VersionRebuild, UnchangedValuesGiveTheSourceBlock) {
    for (const std::string& path : test::FixtureImages("fwd_version")) {
        test::SourceFile source(path);
        for (auto& resource : source.Resources()) {
            auto* version = dynamic_cast<CVersionInfoResource*>(resource.get());
            if (version == nullptr)
                continue;
            SCOPED_TRACE(path + " version " + version->identifierText + " language " +
                         std::to_string(version->language));
            const CVersionBlock before = version->block;
            if (version->hasValues)
                test::Merge(*version, test::Stream(*version, {}));
            const auto written = test::Rebuild(*version);
            ASSERT_EQ(written.size(), 1u);
            EXPECT_EQ(written[0].type, 16);
            const auto original = source.BytesOf(*version);
            if (!before.varFirst) {
                EXPECT_EQ(written[0].bytes, original);
                continue;
            }
            // VarFileInfo comes back behind StringFileInfo; the same nodes otherwise,
            // but that a value offered in two tables goes back to the first
            // with the text the document showed, the second's.
            EXPECT_EQ(WalkedValues(written[0].bytes), WalkedValues(original));
            CVersionBlock again;
            again.Parse(written[0].bytes);
            EXPECT_EQ(again.values, before.values);
            ASSERT_EQ(again.vars.size(), before.vars.size());
            EXPECT_EQ(again.vars[0].value, before.vars[0].value);
        }
    }
}

const std::u16string kLongest(300, u'v');

struct ValueCase {
    const char* name;
    std::vector<std::pair<std::string, std::u16string>> changes;
    DWORD mode;
    std::map<std::string, std::string> values; // changed values by key
    std::string error;
};

const char* const kProductName = "[Tervane 100% & more]";

TEST(VersionRebuild, TranslatedValuesAndTheirLengths) {
    const ValueCase cases[] = {
        {"longer and accented, '%' and '&' as they stand",
         {{kProductName, u"[Tervane 100 % & mehr — Übersetzt]"}},
         1,
         {{"ProductName", "Tervane 100 % & mehr — Übersetzt"}},
         ""},
        {"longer by one unit",
         {{kProductName, u"[Tervane 100% & more!]"}},
         1,
         {{"ProductName", "Tervane 100% & more!"}},
         ""},
        {"shorter by an odd number of units",
         {{kProductName, u"[Tervane]"}},
         1,
         {{"ProductName", "Tervane"}},
         ""},
        {"the line marks as the forward conversion gave them",
         {{"{\\n}{\\r}[All rights reserved]", u"{\\r}{\\n}[Alle Rechte]"}},
         1,
         {{"LegalCopyright", "(c) Zelkor\n\rAlle Rechte"}},
         ""},
        {"at the limit",
         {{kProductName, u"[" + kLongest + u"]"}},
         1,
         {{"ProductName", Narrow(kLongest)}},
         ""},
        {"one beyond, an error in a final conversion",
         {{kProductName, u"[" + kLongest + u"w]"}},
         1,
         {},
         "Error: Length of translated text is longer than the allowed 300 characters "
         "(versioninfo resource ,control name = 'productname').\n" +
             kTrailer},
        {"an empty value",
         {{kProductName, u""}},
         1,
         {},
         "Error: There is no text between the opening and the closing tag (versioninfo resource "
         "\ncontrol 'productname').\n" +
             kTrailer},
    };
    for (const ValueCase& c : cases) {
        SCOPED_TRACE(c.name);
        ConversionMode mode(c.mode);
        test::SourceFile source(test::FixturePath("fwd_version", "x86"));
        auto& version = static_cast<CVersionInfoResource&>(source.Find(16, "1"));
        auto expected = WalkedValues(source.BytesOf(version));
        test::Merge(version, test::Stream(version, c.changes));
        if (!c.error.empty()) {
            EXPECT_EQ(test::RebuildError(version), c.error);
            continue;
        }
        const auto written = test::Rebuild(version);
        ASSERT_EQ(written.size(), 1u);
        for (const auto& [key, value] : c.values)
            expected[key] = value;
        EXPECT_EQ(WalkedValues(written[0].bytes), expected);
    }
}

// Only five values change, and only where the block has a string for them.
TEST(VersionRebuild, ValuesWithoutTheirStringChangeNothing) {
    test::SourceFile source(test::FixturePath("fwd_version", "x64"));
    auto& version = static_cast<CVersionInfoResource&>(source.Find(16, "2"));
    version.block.newValues.legalTrademarks = u"TM";
    version.block.Rebuild();
    EXPECT_EQ(version.block.buffer.bytes(), source.BytesOf(version));
}

// A value that would outgrow the 16-bit lengths of its block is refused.
TEST(VersionRebuild, LengthsBeyondSixteenBitsAreRefused) {
    test::SourceFile source(test::FixturePath("fwd_version", "x64"));
    auto& version = static_cast<CVersionInfoResource&>(source.Find(16, "1"));
    // An even number of units more grows every length by twice as many bytes.
    const std::size_t most = (0xFFFF - version.block.root.length) / 2 & ~std::size_t{1};
    for (const auto& [extra, fits] : {std::pair{most, true}, {most + 2, false}}) {
        CVersionBlock block = version.block;
        block.buffer.SetContext("versioninfo id = 1");
        block.newValues.productName =
            version.sourceValues.productName + std::u16string(extra, u'x');
        if (fits) {
            block.Rebuild();
            EXPECT_EQ(WalkedValues(block.buffer.bytes()).at("ProductName").size(),
                      version.sourceValues.productName.size() + extra);
        } else {
            try {
                block.Rebuild();
                ADD_FAILURE() << "no error";
            } catch (const TervaneFilterException& e) {
                EXPECT_NE(std::string(e.message).find("versioninfo id = 1"), std::string::npos)
                    << e.message;
            }
        }
    }
}

} // namespace
} // namespace tervane
