#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>

#include "platform/pe/pe_image.h"
#include "platform/pe/resource_directory.h"
#include "tests/app/extract_run.h"
#include "tests/support/fixtures.h"

namespace tervane {
namespace {

using test::Extract;
using test::ExtractRun;
using test::Lines;

const char* const kCorrupted = "The selected document appears to be corrupted or in an "
                               "invalid/unsupported format.\nPlease verify and try again.";

TEST(Extract, EdgesOfTheStream) {
    struct Case {
        std::vector<const char*> fixtures;
        int status;
        std::vector<std::string> events;
        // The line behind the failure's text, after the file's name.
        std::string place = "";
    };
    const std::vector<std::string> broken = {R"({"event": "StartOfInput", "info": true})",
                                             R"({"event": "Progress", "value": 0})",
                                             R"({"event": "Progress", "value": 50})"};
    const Case cases[] = {
        // Nothing of interest: no host progress, an empty document.
        {{"fwd_none"},
         0,
         {R"({"event": "StartOfInput", "info": true})", R"({"event": "EndOfInput"})"}},
        // Dialog init data count in the first pass and open no group.
        {{"fwd_dlginit_only"},
         0,
         {R"({"event": "StartOfInput", "info": true})", R"({"event": "Progress", "value": 0})",
          R"({"event": "Progress", "value": 50})", R"({"event": "Progress", "value": 100})",
          R"({"event": "Progress", "value": 100})", R"({"event": "EndOfInput"})"}},
        // A dialog with nothing to translate opens no group, even when alone.
        {{"fwd_skipped_only"},
         0,
         {R"({"event": "StartOfInput", "info": true})", R"({"event": "Progress", "value": 0})",
          R"({"event": "Progress", "value": 100})", R"({"event": "Progress", "value": 100})",
          R"({"event": "EndOfInput"})"}},
        // A block that can't be read takes everything with it: no end of input,
        // not even the good menu read before a broken one.
        {{"fwd_corrupt"},
         1,
         broken,
         ": resource type 6, name 2, language 0x0409: offset 0x2, field string"},
        {{"fwd_menu_corrupt"},
         1,
         broken,
         ": resource type 4, name 2, language 0x0409: offset 0x14, field mtString"},
    };
    for (const Case& c : cases) {
        for (const char* fixture : c.fixtures) {
            for (const auto& image : test::FixtureImages(fixture)) {
                ExtractRun run = Extract("--events", image);
                EXPECT_EQ(run.status, c.status) << image;
                EXPECT_EQ(Lines(run.out), c.events) << image;
                EXPECT_EQ(run.err.find(kCorrupted) != std::string::npos, c.status != 0) << run.err;
                if (!c.place.empty()) {
                    EXPECT_NE(run.err.find(std::string(kCorrupted) + "\n" + image + c.place + "\n"),
                              std::string::npos)
                        << run.err;
                }
            }
        }
    }
}

// The ninth of twelve blocks points outside every section: the first two
// batches reach the host, the stream is closed, the call fails.
TEST(Extract, UnloadableResourceInTheThirdBatch) {
    for (const auto& image : test::FixtureImages("fwd_blocks")) {
        auto bytes = test::ReadFile(image);
        auto pe = pe::PeImage::Parse({bytes.begin(), bytes.end()});
        ASSERT_TRUE(pe);
        auto tree = pe::ReadResourceTree(*pe);
        ASSERT_TRUE(tree);
        const pe::ResourceDataEntry data = tree->types.at(0).names.at(8).languages.at(0).data;
        unsigned char entry[8];
        std::memcpy(entry, &data.rva, 4);
        std::memcpy(entry + 4, &data.size, 4);
        auto at = std::search(bytes.begin(), bytes.end(), entry, entry + 8);
        ASSERT_NE(at, bytes.end());
        const std::uint32_t outside = 0x7FFFFF00;
        std::memcpy(&*at, &outside, 4);
        const std::string broken = test::TempDir() + "/broken.dll";
        test::WriteFile(broken, bytes);

        ExtractRun run = Extract("--events", broken);
        EXPECT_EQ(run.status, 1);
        EXPECT_NE(run.err.find("An Error has occured during opening the Executable file..!"),
                  std::string::npos)
            << run.err;
        EXPECT_NE(run.err.find("\n" + broken + ": resource type 6, name 9, language 0x0409: " +
                               "resource data at RVA 0x7FFFFF00"),
                  std::string::npos)
            << run.err;
        std::vector<std::string> lines = Lines(run.out);
        ASSERT_GE(lines.size(), 2u);
        EXPECT_EQ(lines.back(), R"({"event": "EndOfInput"})");
        EXPECT_EQ(lines[lines.size() - 2], R"({"event": "Progress", "value": 100})");
        std::size_t strings = 0;
        for (std::size_t at = 0; (at = run.out.find("<string id=", at)) != std::string::npos; ++at)
            ++strings;
        EXPECT_EQ(strings, 8u);
        EXPECT_EQ(run.out.find("</stringtable>"), std::string::npos);
    }
}

// The same verdict as list's, before the component sees the file.
TEST(Extract, UnreadableFilesFailBeforeAnyEvent) {
    const std::pair<const char*, const char*> cases[] = {
        {"/nonexistent/file.dll", "The system cannot find the file specified."},
        {"/etc", "is a directory, not a regular file; not read"},
        {"/dev/zero", "is a device, not a regular file; not read"},
    };
    for (const auto& [path, message] : cases) {
        ExtractRun run = Extract("--events", path);
        EXPECT_EQ(run.status, 1) << path;
        EXPECT_EQ(run.out, "") << path;
        EXPECT_EQ(run.err, std::string("tervane extract: ") + path + ": " + message + "\n");
    }
}

TEST(ExtractDialogs, TracesOfTheReader) {
    for (const auto& image : test::FixtureImages("fwd_dialogs")) {
        ExtractRun run = Extract("", image, true);
        for (const char* text :
             {"DS_SETFONT is set", "-----Dialog id = 104 has been skipped-----\n",
              "!!!!!Dialog id = 107 has been skipped, there is no translatable contents.!!!!!\n"})
            EXPECT_NE(run.trace.find(text), std::string::npos) << text;
        EXPECT_EQ(run.out.find("DS_SETFONT"), std::string::npos);
    }
}

} // namespace
} // namespace tervane
