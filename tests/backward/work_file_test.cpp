#include <gtest/gtest.h>

#include <map>

#include "platform/files/file_calls.h"
#include "tests/backward/round_trip.h"

namespace tervane {
namespace {

// Every resource of each fixture, merged unchanged and written into a copy of
// it under French: the file holds what the visitor built, the system reads
// it, named resources keep their names, and a read-only copy stays so.
TEST(WorkFile, RebuiltResourcesGoIntoTheFile) {
    constexpr WORD kFrench = 0x40C;
    for (const char* fixture : {"fwd_strings", "fwd_menus", "fwd_dialogs", "fwd_version"}) {
        for (const char* arch : {"x64", "x86"}) {
            SCOPED_TRACE(std::string(fixture) + " " + arch);
            const std::string work = test::TempDir() + "/" + fixture + ".dll";
            test::WriteFile(work, test::ReadFile(test::FixturePath(fixture, arch)));
            const std::u16string workPath(work.begin(), work.end());
            const bool readOnly = std::string(arch) == "x86";
            if (readOnly)
                _wchmod(workPath.c_str(), _S_IREAD);

            test::SourceFile source(test::FixturePath(fixture, arch));
            // Two languages of one resource go to the same place: the last one stays.
            std::map<std::pair<WORD, std::string>, std::vector<std::uint8_t>> expected;
            for (auto& resource : source.Resources()) {
                const WORD type = CResourceParserImpl::GetResourceType(*resource);
                if (type == kDlgInitType)
                    continue;
                if (!test::SpeltPieces(*resource).empty())
                    test::Merge(*resource, test::Stream(*resource, {}));
                for (const test::Written& written : test::Rebuild(*resource, kFrench))
                    expected[{written.type, written.identifier}] = written.bytes;
                CUpdateVisitor visitor;
                visitor.workPath = workPath;
                resource->Accept(visitor);
            }
            ASSERT_FALSE(expected.empty());

            EXPECT_EQ(_waccess(workPath.c_str(), 2) != 0, readOnly);
            _wchmod(workPath.c_str(), _S_IWRITE);
            test::SourceFile result(work);
            for (const auto& [key, bytes] : expected) {
                SCOPED_TRACE(std::to_string(key.first) + " " + key.second);
                CResource& found = result.Find(key.first, key.second, kFrench);
                EXPECT_EQ(found.name.IsOrdinal(), key.second != "SETTINGS");
                EXPECT_EQ(result.BytesOf(found), bytes);
            }
            // The resource compiler reads the result as it reads the source: it
            // refuses the fixture's block with VarFileInfo first in both.
            auto windres = [arch](const std::string& file) {
                return test::RunCommand(
                    std::string(arch == std::string("x64") ? "x86_64" : "i686") +
                    "-w64-mingw32-windres -i " + file + " -O rc 2>&1 >/dev/null");
            };
            EXPECT_EQ(windres(work), windres(test::FixturePath(fixture, arch)));
        }
    }
}

} // namespace
} // namespace tervane
