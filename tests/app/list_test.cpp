// `tervane list` against python3-pefile, an independent reader of the resource
// directory, on every fixture, on real files and on names no compiler writes.
#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>
#include <tuple>

#include "platform/byte_reader.h"
#include "tests/support/fixtures.h"

namespace tervane {
namespace {

const std::string kTervane = std::string(TERVANE_BINARY_DIR) + "/tervane";

std::string ListJson(const std::string& path, int* status) {
    return test::RunCommand(kTervane + " list --json '" + path + "' 2>/dev/null", status);
}

void ExpectSameAsPefile(const std::string& path) {
    int ours = -1, theirs = -1;
    EXPECT_EQ(ListJson(path, &ours),
              test::RunCommand(test::DebianPython() + " " + TERVANE_SOURCE_DIR +
                                   "/tests/app/list_resources.py '" + path + "'",
                               &theirs))
        << path;
    EXPECT_EQ(ours, 0) << path;
    EXPECT_EQ(theirs, 0) << path;
}

// Every fixture, and a sample of the real files where Debian's wine64 has put
// them with the two that have the most languages.
TEST(List, MatchesPefileOnFixturesAndWinesFiles) {
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(TERVANE_FIXTURE_DIR))
        if (entry.path().extension() == ".dll")
            files.push_back(entry.path());
    EXPECT_GE(files.size(), 4u);
    const std::filesystem::path wine = test::WineDir();
    std::vector<std::filesystem::path> wines;
    if (std::filesystem::is_directory(wine))
        for (const auto& entry : std::filesystem::directory_iterator(wine))
            wines.push_back(entry.path());
    std::sort(wines.begin(), wines.end());
    for (std::size_t i = 0; i < wines.size(); ++i)
        if (i % 10 == 0 || wines[i].filename() == "shell32.dll" ||
            wines[i].filename() == "comctl32.dll")
            files.push_back(wines[i]);
    for (const auto& file : files)
        ExpectSameAsPefile(file.string());
}

// Overwrites the first units of the named entry "A-B" of the reader fixture.
std::string WithName(const std::u16string& units) {
    auto image = test::ReadFile(test::FixturePath("reader", "x64"));
    const unsigned char needle[] = {3, 0, 'A', 0, '-', 0, 'B', 0};
    auto at = std::search(image.begin(), image.end(), std::begin(needle), std::end(needle));
    EXPECT_NE(at, image.end());
    for (std::size_t i = 0; i < units.size() && i < 3; ++i)
        StoreU16LE(&*(at + 2 + 2 * static_cast<std::ptrdiff_t>(i)), units[i]);
    std::string path = test::TempDir() + "/name.dll";
    test::WriteFile(path, image);
    return path;
}

// A lone surrogate, pairs up to the last one, every control character (three
// to a name) and characters beyond ASCII.
TEST(List, NamesNoCompilerWritesAreEscaped) {
    std::vector<std::u16string> names = {u"\xD800-B", u"\xD83D\xDE00", u"\xDBFF\xDFFF",
                                         u"\xE9\x20AC\x7F"};
    for (char16_t c = 0; c < 0x20; c += 3)
        names.push_back(
            {c, static_cast<char16_t>(c + 1), static_cast<char16_t>(c + 2 < 0x20 ? c + 2 : 'x')});
    for (const std::u16string& units : names)
        ExpectSameAsPefile(WithName(units));
    int status = -1;
    EXPECT_NE(ListJson(WithName(u"\xD800-B"), &status)
                  .find("{\"type\": 10, \"name\": \"\\ud800-B\", \"lang\": 1033, \"size\": 3}"),
              std::string::npos);
}

TEST(List, TableAndFailures) {
    int status = -1;
    std::string table =
        test::RunCommand(kTervane + " list '" + test::FixturePath("reader", "x86") + "'", &status);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(table.substr(0, table.find('\n')), "TYPE           NAME             LANG    SIZE");
    EXPECT_NE(table.find("\n10 (RCDATA)    \" SPACED NAME \"  0x0409     6\n"), std::string::npos)
        << table;
    EXPECT_NE(table.find("\n23 resources\n"), std::string::npos);

    std::string dir = test::TempDir();
    test::WriteFile(dir + "/bad.dll", {'M', 'Z', 0, 0});
    // The file's name stands in the first line; the second says what the reader knew.
    const std::tuple<std::string, std::string, std::string> cases[] = {
        {dir + "/missing.dll", "The system cannot find the file specified.", ""},
        {dir, "is a directory, not a regular file; not read", ""},
        {dir + "/bad.dll", dir + "/bad.dll is not a valid Win32 application.",
         "DOS header is truncated\n"},
    };
    for (const auto& [file, message, place] : cases) {
        for (const char* json : {"", "--json "}) {
            std::string out = test::RunCommand(
                kTervane + " list " + json + "'" + file + "' 2>&1 >/dev/null", &status);
            EXPECT_EQ(status, 1) << file;
            EXPECT_EQ(out, "tervane list: " + file + ": " + message + "\n" + place);
        }
    }
}

} // namespace
} // namespace tervane
