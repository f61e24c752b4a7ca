// Extract, merge unchanged into another language, extract again: the
// document comes back, every localisable resource stands under the new
// language alone, every other resource keeps its bytes, and independent
// readers take the file.
#include <gtest/gtest.h>

#include "tests/app/extract_run.h"
#include "tests/support/fixtures.h"

namespace tervane {
namespace {

// script: identity_check.py or translate_check.py, which print a line for
// each file that differs and then a summary.
std::vector<std::string> Check(const std::string& files,
                               const std::string& script = "identity_check.py") {
    return test::Lines(test::RunCommand(test::DebianPython() + " " + TERVANE_SOURCE_DIR +
                                        "/tests/backward/" + script + " " + TERVANE_BINARY_DIR +
                                        "/tervane 0x40C " + files));
}

const char* const kFixtures[] = {
    "sample",       "fwd_blocks",  "fwd_dialogs", "fwd_dialogs_skipped", "fwd_dlginit_only",
    "fwd_edges",    "fwd_layout",  "fwd_menus",   "fwd_strings",         "fwd_version",
    "update_names", "bwd_dialogs", "bwd_menus"};

std::string WineFiles() {
    const std::string dir = test::WineDir();
    if (test::RunCommand("ls " + dir + "/shell32.dll 2>/dev/null").empty())
        return {};
    return test::RunCommand("for f in " + dir + "/*; do " + TERVANE_BINARY_DIR +
                            "/tervane list --json \"$f\" 2>/dev/null | grep -qE '\"type\": "
                            "(4|5|6|16),' && printf ' %s' \"$f\"; done");
}

TEST(MergeIdentity, Fixtures) {
    std::string files;
    for (const char* name : kFixtures)
        for (const std::string& image : test::FixtureImages(name))
            files += " " + image;
    const std::vector<std::string> lines = Check(files);
    ASSERT_FALSE(lines.empty());
    EXPECT_EQ(lines.back(), "26 files, 0 differ");
    for (std::size_t i = 0; i + 1 < lines.size(); ++i)
        ADD_FAILURE() << lines[i];
}

// Every PE file of Wine's Windows side with a menu, dialog, string table or
// version block.
TEST(MergeIdentity, WinesFiles) {
    const std::string files = WineFiles();
    if (files.empty())
        GTEST_SKIP() << "wine64 is not installed";
    const std::vector<std::string> lines = Check(files);
    ASSERT_FALSE(lines.empty());
    EXPECT_NE(lines.back().find(" files, 0 differ"), std::string::npos) << lines.back();
    for (std::size_t i = 0; i + 1 < lines.size(); ++i)
        ADD_FAILURE() << lines[i];
}

// A pseudo-translation of every text (accents, 40% longer; placeholders,
// hotkey marks and shortcuts kept) comes back exactly.
TEST(MergeTranslation, FixturesAndWinesFiles) {
    std::string files;
    for (const char* name : kFixtures)
        for (const std::string& image : test::FixtureImages(name))
            files += " " + image;
    files += WineFiles();
    const std::vector<std::string> lines = Check(files, "translate_check.py");
    ASSERT_FALSE(lines.empty());
    EXPECT_NE(lines.back().find(" files, 0 differ"), std::string::npos) << lines.back();
    for (std::size_t i = 0; i + 1 < lines.size(); ++i)
        ADD_FAILURE() << lines[i];
}

} // namespace
} // namespace tervane
