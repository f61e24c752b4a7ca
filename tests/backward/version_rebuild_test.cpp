#include <gtest/gtest.h>

#include <functional>
#include <map>

#include "frame/diagnostics/exceptions.h"
#include "model/version_info_resource.h"
#include "tests/backward/decoders.h"
#include "tests/backward/round_trip.h"

namespace tervane {
namespace {

using test::ConversionMode;
using test::kTrailer;

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
        auto expected = test::WalkedValues(source.BytesOf(version));
        test::Merge(version, test::Stream(version, c.changes));
        if (!c.error.empty()) {
            EXPECT_EQ(test::RebuildError(version), c.error);
            continue;
        }
        const auto written = test::Rebuild(version);
        ASSERT_EQ(written.size(), 1u);
        for (const auto& [key, value] : c.values)
            expected[key] = value;
        EXPECT_EQ(test::WalkedValues(written[0].bytes), expected);
    }
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
            EXPECT_EQ(test::WalkedValues(block.buffer.bytes()).at("ProductName").size(),
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
