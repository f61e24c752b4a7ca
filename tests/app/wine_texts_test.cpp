#include <gtest/gtest.h>

#include "tests/support/fixtures.h"

namespace tervane {
namespace {

// Every PE file that Debian's wine64 installs: each text of its dialogs, menus,
// string tables and version values comes out exactly once, as an independent
// reader of the templates finds them, and no file fails.
TEST(Extract, EveryTextOfWinesFiles) {
    const std::string dir = "/usr/lib/x86_64-linux-gnu/wine/x86_64-windows";
    if (test::RunCommand("ls " + dir + "/shell32.dll 2>/dev/null").empty())
        GTEST_SKIP() << "wine64 is not installed";
    std::string report = test::RunCommand("ls " + dir + "/* | xargs " + test::DebianPython() + " " +
                                          TERVANE_SOURCE_DIR + "/tests/app/check_texts.py " +
                                          TERVANE_BINARY_DIR + "/tervane");
    std::size_t last = report.rfind('\n', report.size() - 2);
    std::string summary = report.substr(last == std::string::npos ? 0 : last + 1);
    EXPECT_NE(summary.find(" files, "), std::string::npos) << report;
    EXPECT_NE(summary.find(", 0 differ"), std::string::npos) << report;
}

} // namespace
} // namespace tervane
