#include <gtest/gtest.h>

#include "tests/app/extract_run.h"
#include "tests/support/fixtures.h"

namespace tervane {
namespace {

// Every PE file that Debian's wine64 installs: each text of its dialogs, menus,
// string tables and version values comes out exactly once, as an independent
// reader of the templates finds them, and no file fails.
TEST(Extract, EveryTextOfWinesFiles) {
    const std::string dir = test::WineDir();
    if (test::RunCommand("ls " + dir + "/shell32.dll 2>/dev/null").empty())
        GTEST_SKIP() << "wine64 is not installed";
    std::string report = test::RunCommand("ls " + dir + "/* | xargs " + test::DebianPython() + " " +
                                          TERVANE_SOURCE_DIR + "/tests/app/check_texts.py " +
                                          TERVANE_BINARY_DIR + "/tervane");
    // Only summaries, one a batch of xargs, each without a difference.
    const std::vector<std::string> lines = test::Lines(report);
    EXPECT_FALSE(lines.empty());
    for (const std::string& line : lines)
        EXPECT_NE(line.find(" texts, 0 differ"), std::string::npos) << line;
}

} // namespace
} // namespace tervane
