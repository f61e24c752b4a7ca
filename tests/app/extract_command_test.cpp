#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <sstream>

#include "platform/pe/pe_image.h"
#include "platform/pe/resource_directory.h"
#include "tests/app/extract_run.h"
#include "tests/support/fixtures.h"

namespace tervane {
namespace {

using test::Extract;
using test::ExtractRun;
using test::Lines;

const char* const kStringsDocument = "<resources>\n"
                                     "\t<stringtable>\n"
                                     "\t\t<string id=\"1\">Speichern %s?</string>\n"
                                     "\t\t<string id=\"1\">Save %s?</string>\n"
                                     "\t\t<string id=\"2\"> </string>\n"
                                     "\t\t<string id=\"3\">100% of %d</string>\n"
                                     "\t\t<string id=\"4\">a&b</string>\n"
                                     "\t\t<string id=\"5\">back\\slash</string>\n"
                                     "\t\t<string id=\"6\">Line one\\r\\nLine two</string>\n"
                                     "\t\t<string id=\"37\">Thirty-seven</string>\n"
                                     "\t</stringtable>\n"
                                     "</resources>\n";

TEST(Extract, WholeDocumentOfStringTables) {
    for (const auto& image : test::FixtureImages("fwd_strings")) {
        ExtractRun run = Extract("", image);
        EXPECT_EQ(run.status, 0) << run.err;
        EXPECT_EQ(run.out, kStringsDocument) << image;
    }
}

// The pieces of one entry as events, between its two tabs and its line end.
TEST(Extract, PiecesOfEntries) {
    struct Case {
        const char* id;
        std::vector<std::string> events;
    };
    const auto tag = test::TagEvent;
    const auto text = test::TextEvent;
    const Case cases[] = {
        {"2", {text(" ")}},
        {"3", {text("100% of "), tag("%d", "%d", 0, 0, 1)}},
        {"4", {text("a&b")}},
        {"6",
         {text("Line one"), tag("\\\\r", "\\\\r", 0, 0, 1), tag("\\\\n", "\\\\n", 0, 0, 1),
          text("Line two")}},
        {"37", {text("Thirty-seven")}},
    };
    for (const auto& image : test::FixtureImages("fwd_strings")) {
        std::vector<std::string> lines = Lines(Extract("--events", image).out);
        for (const Case& c : cases) {
            std::string open =
                tag("<string id=\\\"" + std::string(c.id) + "\\\">", "string", 1, 0, 0);
            auto at = std::find(lines.begin(), lines.end(), open);
            ASSERT_NE(at, lines.end()) << c.id;
            std::vector<std::string> expected = c.events;
            expected.push_back(tag("</string>", "string", 0, 1, 0));
            expected.push_back(text("\\n"));
            ASSERT_GE(static_cast<std::size_t>(lines.end() - at), expected.size() + 1) << c.id;
            EXPECT_EQ(std::vector<std::string>(at + 1, at + 1 + expected.size()), expected) << c.id;
            EXPECT_EQ(*(at - 1), text("\\t\\t")) << c.id;
        }
    }
}

TEST(Extract, EdgesOfTheStream) {
    struct Case {
        const char* fixture;
        int status;
        std::vector<std::string> events;
    };
    const Case cases[] = {
        // Nothing of interest: no host progress, an empty document.
        {"fwd_none",
         0,
         {R"({"event": "StartOfInput", "info": true})", R"({"event": "EndOfInput"})"}},
        // Dialog init data count in the first pass and open no group.
        {"fwd_dlginit_only",
         0,
         {R"({"event": "StartOfInput", "info": true})", R"({"event": "Progress", "value": 0})",
          R"({"event": "Progress", "value": 50})", R"({"event": "Progress", "value": 100})",
          R"({"event": "Progress", "value": 100})", R"({"event": "EndOfInput"})"}},
        // A block that can't be read takes everything with it: no end of input.
        {"fwd_corrupt",
         1,
         {R"({"event": "StartOfInput", "info": true})", R"({"event": "Progress", "value": 0})",
          R"({"event": "Progress", "value": 50})"}},
    };
    for (const Case& c : cases) {
        for (const auto& image : test::FixtureImages(c.fixture)) {
            ExtractRun run = Extract("--events", image);
            EXPECT_EQ(run.status, c.status) << image;
            EXPECT_EQ(Lines(run.out), c.events) << image;
        }
    }
    ExtractRun corrupt = Extract("", test::FixturePath("fwd_corrupt", "x86"));
    EXPECT_NE(corrupt.err.find("The selected document appears to be corrupted or in an "
                               "invalid/unsupported format.\nPlease verify and try again."),
              std::string::npos)
        << corrupt.err;
}

TEST(Extract, NamedBlockCountsAsBlockZero) {
    ExtractRun run = Extract("", test::FixturePath("fwd_edges", "x64"));
    EXPECT_EQ(run.out, "<resources>\n\t<stringtable>\n\t\t<string id=\"-16\">Hi</string>\n"
                       "\t</stringtable>\n</resources>\n");
}

TEST(Extract, ProgressRisesToOneHundred) {
    std::vector<int> values;
    for (const auto& line : Lines(Extract("--events", test::FixturePath("fwd_blocks", "x64")).out))
        if (line.find("\"Progress\"") != std::string::npos)
            values.push_back(std::stoi(line.substr(line.rfind(' ') + 1)));
    ASSERT_EQ(values.size(), 14u); // 0, one a resource, 100
    EXPECT_TRUE(std::is_sorted(values.begin(), values.end()));
    EXPECT_EQ(values.front(), 0);
    EXPECT_EQ(values.back(), 100);
    EXPECT_EQ(values[values.size() - 2], 100);
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
        unsigned char entry[16];
        std::memcpy(entry, &data.rva, 4);
        std::memcpy(entry + 4, &data.size, 4);
        std::memcpy(entry + 8, &data.codePage, 4);
        std::memcpy(entry + 12, &data.reserved, 4);
        auto at = std::search(bytes.begin(), bytes.end(), entry, entry + 16);
        ASSERT_NE(at, bytes.end());
        const std::uint32_t outside = 0x7FFFFF00;
        std::memcpy(&*at, &outside, 4);
        std::string dir = test::TempDir();
        test::WriteFile(dir + "/broken.dll", bytes);

        ExtractRun run = Extract("--events", dir + "/broken.dll");
        test::RunCommand("rm -rf '" + dir + "'");
        EXPECT_EQ(run.status, 1);
        EXPECT_NE(run.err.find("An Error has occured during opening the Executable file..!"),
                  std::string::npos)
            << run.err;
        std::vector<std::string> lines = Lines(run.out);
        ASSERT_FALSE(lines.empty());
        EXPECT_EQ(lines.back(), R"({"event": "EndOfInput"})");
        EXPECT_EQ(lines[lines.size() - 2], R"({"event": "Progress", "value": 100})");
        EXPECT_EQ(std::count_if(lines.begin(), lines.end(),
                                [](const std::string& l) {
                                    return l.find("<string id=") != std::string::npos;
                                }),
                  8);
        EXPECT_EQ(std::count_if(lines.begin(), lines.end(),
                                [](const std::string& l) {
                                    return l.find("</stringtable>") != std::string::npos;
                                }),
                  0);
    }
}

TEST(Extract, UnreadableFilesFailBeforeAnyEvent) {
    for (const char* path : {"/nonexistent/file.dll", "/etc"}) {
        ExtractRun run = Extract("--events", path);
        EXPECT_EQ(run.status, 1) << path;
        EXPECT_EQ(run.out, "") << path;
        EXPECT_NE(run.err.find("An Error has occured during parsing..!"), std::string::npos)
            << run.err;
    }
}

} // namespace
} // namespace tervane

namespace tervane {
namespace {

// Real files where Debian's wine64 has put them: every non-empty string of
// every block and language comes out as one element, and nothing fails.
TEST(Extract, EveryStringOfWinesFiles) {
    const std::string dir = "/usr/lib/x86_64-linux-gnu/wine/x86_64-windows";
    const char* const names[] = {"shell32.dll",  "comctl32.dll", "user32.dll", "kernelbase.dll",
                                 "comdlg32.dll", "wininet.dll",  "msi.dll",    "cmd.exe",
                                 "notepad.exe",  "regedit.exe",  "winecfg.exe"};
    if (test::RunCommand("ls " + dir + "/shell32.dll 2>/dev/null").empty())
        GTEST_SKIP() << "wine64 is not installed";
    std::string files;
    for (const char* name : names)
        files += " " + dir + "/" + name;
    std::istringstream counts(test::RunCommand(test::DebianPython() + " " + TERVANE_SOURCE_DIR +
                                               "/tests/app/count_strings.py" + files));
    std::string path;
    long expected = 0;
    int checked = 0;
    while (counts >> path >> expected) {
        ExtractRun run = Extract("", path);
        EXPECT_EQ(run.status, 0) << path << ": " << run.err;
        long found = 0;
        for (std::size_t at = run.out.find("<string id=\""); at != std::string::npos;
             at = run.out.find("<string id=\"", at + 1))
            ++found;
        EXPECT_EQ(found, expected) << path;
        ++checked;
    }
    EXPECT_EQ(checked, static_cast<int>(std::size(names)));
}

} // namespace
} // namespace tervane
