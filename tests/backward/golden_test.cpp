#include <gtest/gtest.h>

#include "platform/files/file_calls.h"
#include "tests/backward/decoders.h"
#include "tests/backward/round_trip.h"

namespace tervane {
namespace {

// Every resource of the fixtures, PE32 and PE32+, merged with its own pieces
// and rebuilt, gives the bytes of its source, but where noted; and the
// visitor puts them into a read-only copy of the file under French, by name
// or number, and leaves the copy read-only.
TEST(Rebuild, UnchangedPiecesGiveTheSourceBytes) {
    constexpr WORD kFrench = 0x40C;
    for (const char* fixture :
         {"fwd_strings", "fwd_menus", "bwd_menus", "fwd_dialogs", "bwd_dialogs", "fwd_version"}) {
        for (const std::string& path : test::FixtureImages(fixture)) {
            const std::string work = test::TempDir() + "/work.dll";
            test::WriteFile(work, test::ReadFile(path));
            const std::u16string workPath(work.begin(), work.end());
            _wchmod(workPath.c_str(), _S_IREAD);
            test::SourceFile source(path);
            // Two languages of one resource go to one place: the last one stays.
            std::map<std::pair<WORD, std::string>, std::vector<std::uint8_t>> last;
            for (auto& resource : source.Resources()) {
                const WORD type = CResourceParserImpl::GetResourceType(*resource);
                if (type == kDlgInitType)
                    continue;
                SCOPED_TRACE(path + " type " + std::to_string(type) + " " +
                             resource->identifierText + " " + std::to_string(resource->language));
                test::ConversionMode mode(1);
                const std::u16string spelt = test::SpeltPieces(*resource);
                auto* version = dynamic_cast<CVersionInfoResource*>(resource.get());
                const CVersionBlock before = version ? version->block : CVersionBlock();
                if (!spelt.empty())
                    test::Merge(*resource, test::Stream(*resource, {}));
                const auto written = test::Rebuild(*resource, kFrench);
                // A separator that ends its pop-up is no empty item either.
                EXPECT_EQ(mode.Messages(), std::vector<std::string>{});
                ASSERT_FALSE(written.empty());
                EXPECT_EQ(written[0].type, type);
                const auto original = source.BytesOf(*resource);
                auto* dialog = dynamic_cast<CDialogResource*>(resource.get());
                if (fixture == std::string("fwd_strings") && resource->identifierText == "1" &&
                    resource->language == 0x409) {
                    // "a&&b" comes back as "a&b": '&' is plain text in a string table.
                    EXPECT_EQ(test::Strings(written[0].bytes).at(4), "a&b");
                    CStringBlockResource again;
                    again.identifierText = "1";
                    again.size = static_cast<DWORD>(written[0].bytes.size());
                    CStringBlockCommand().Execute(written[0].bytes, &again);
                    EXPECT_EQ(test::SpeltPieces(again), spelt);
                } else if (dialog && !dialog->dialogs.front()->header.isExtended) {
                    // A plain template comes back in the extended form, with the same fields.
                    EXPECT_EQ(test::Described(written[0].bytes), test::Described(original));
                } else if (version && before.varFirst) {
                    // VarFileInfo comes back behind StringFileInfo; a value offered
                    // in two tables goes to the first with the text the document
                    // showed, the second's.
                    EXPECT_EQ(test::WalkedValues(written[0].bytes), test::WalkedValues(original));
                    CVersionBlock again;
                    again.Parse(written[0].bytes);
                    EXPECT_EQ(again.values, before.values);
                    EXPECT_EQ(again.vars.at(0).value, before.vars.at(0).value);
                } else {
                    // A template's last item is aligned, where the compiler leaves it unpadded.
                    EXPECT_EQ(test::Padded(written[0].bytes), test::Padded(original));
                }
                // A dialog's init data goes out behind it.
                ASSERT_EQ(written.size(), dialog && (resource->identifierText == "103" ||
                                                     resource->identifierText == "301")
                                              ? 2u
                                              : 1u);
                if (written.size() == 2) {
                    EXPECT_EQ(written[1].bytes,
                              source.BytesOf(source.Find(240, resource->identifierText)));
                }

                CUpdateVisitor visitor;
                visitor.workPath = workPath;
                resource->Accept(visitor);
                for (const test::Written& one : written)
                    last[{one.type, one.identifier}] = one.bytes;
            }
            EXPECT_NE(_waccess(workPath.c_str(), 2), 0) << "read-only lost";
            _wchmod(workPath.c_str(), _S_IWRITE);
            test::SourceFile result(work);
            for (const auto& [key, bytes] : last) {
                CResource& found = result.Find(key.first, key.second, kFrench);
                EXPECT_EQ(found.name.IsOrdinal(), key.second != "SETTINGS");
                EXPECT_EQ(result.BytesOf(found), bytes);
            }
        }
    }
}

} // namespace
} // namespace tervane
