// tervane extract --filter: the chain parser, filter stage, output changes
// tag names and inline tags and nothing else, on every fixture and on Wine.
#include <gtest/gtest.h>

#include <filesystem>

#include "tests/app/extract_run.h"
#include "tests/support/fixtures.h"

namespace tervane {
namespace {

std::string CheckFilter(const std::string& files) {
    return test::RunCommand("ls " + files + " | xargs " + test::DebianPython() + " " +
                            TERVANE_SOURCE_DIR + "/tests/app/check_filter.py " +
                            TERVANE_BINARY_DIR + "/tervane");
}

// One summary a batch of xargs, each without a difference.
void ExpectNoDifference(const std::string& report) {
    const std::vector<std::string> lines = test::Lines(report);
    EXPECT_FALSE(lines.empty());
    for (const std::string& line : lines)
        EXPECT_NE(line.find(" events, 0 differ"), std::string::npos) << line;
}

TEST(FilterChain, EveryFixtureOnlyRenamedAndCut) {
    ExpectNoDifference(CheckFilter(std::string(TERVANE_FIXTURE_DIR) + "/*.dll"));
}

TEST(FilterChain, EveryFileOfWineOnlyRenamedAndCut) {
    const std::string dir = test::WineDir();
    if (!std::filesystem::exists(dir + "/shell32.dll"))
        GTEST_SKIP() << "wine64 is not installed";
    ExpectNoDifference(CheckFilter(dir + "/*"));
}

// A failure on the way reaches the user as it does without the stage.
TEST(FilterChain, AFailureOfTheParserComesThrough) {
    for (const std::string& image : test::FixtureImages("fwd_corrupt")) {
        const test::ExtractRun plain = test::Extract("--events", image);
        const test::ExtractRun chained = test::Extract("--events --filter", image);
        EXPECT_EQ(chained.status, 1);
        EXPECT_EQ(chained.out, plain.out);
        EXPECT_EQ(chained.err, plain.err);
    }
}

} // namespace
} // namespace tervane
