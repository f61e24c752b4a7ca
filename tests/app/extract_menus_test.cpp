#include <algorithm>
#include <gtest/gtest.h>

#include "tests/app/extract_run.h"
#include "tests/support/fixtures.h"

namespace tervane {
namespace {

using test::Extract;
using test::ExtractRun;
using test::Lines;

// Pop-ups nested four deep step the indentation up and back one tab at a
// time; the menu's own tag stands one tab in.
const char* const kMenusDocument = "<resources>\n"
                                   "\t<menus>\n"
                                   "\t<menu id=\"101\">\n"
                                   "\t\t<item>&File</item>\n"
                                   "\t\t<menu>\n"
                                   "\t\t\t<item id=\"100\">&Open...<shortcut>Ctrl+O</shortcut>"
                                   "</item>\n"
                                   "\t\t\t<separator/>\n"
                                   "\t\t\t<item>&Recent</item>\n"
                                   "\t\t\t<menu>\n"
                                   "\t\t\t\t<item>&More</item>\n"
                                   "\t\t\t\t<menu>\n"
                                   "\t\t\t\t\t<item>&Deep</item>\n"
                                   "\t\t\t\t\t<menu>\n"
                                   "\t\t\t\t\t\t<item id=\"110\">A&B 100%</item>\n"
                                   "\t\t\t\t\t</menu>\n"
                                   "\t\t\t\t</menu>\n"
                                   "\t\t\t</menu>\n"
                                   "\t\t\t<item>E&xit<shortcut>Alt+F4</shortcut></item>\n"
                                   "\t\t</menu>\n"
                                   "\t\t<item id=\"200\">&Help</item>\n"
                                   "\t</menu>\n"
                                   "\t<menu id=\"102\">\n"
                                   "\t\t<item id=\"300\">&Edit</item>\n"
                                   "\t\t<menu>\n"
                                   "\t\t\t<item id=\"301\">Cu&t<shortcut>Ctrl+Shift+X</shortcut>"
                                   "</item>\n"
                                   "\t\t\t<separator/>\n"
                                   "\t\t\t<item id=\"65534\">Back\\slash</item>\n"
                                   "\t\t</menu>\n"
                                   "\t</menu>\n"
                                   "\t<menu id=\"103\">\n"
                                   "\t\t<item>File</item>\n"
                                   "\t\t<menu>\n"
                                   "\t\t\t<item id=\"100\">Exit</item>\n"
                                   "\t\t</menu>\n"
                                   "\t</menu>\n"
                                   "\t</menus>\n"
                                   "</resources>\n";

TEST(ExtractMenus, WholeDocument) {
    for (const auto& image : test::FixtureImages("fwd_menus")) {
        ExtractRun run = Extract("", image);
        EXPECT_EQ(run.status, 0) << run.err;
        EXPECT_EQ(run.out, kMenusDocument) << image;
    }
}

// The events of one line: indentation, tags with their names and marks, texts.
TEST(ExtractMenus, EventsOfAnItemWithAShortcut) {
    auto tag = [](const std::string& text, int start, int end, int in, std::string name = "") {
        return test::TagEvent(text, name.empty() ? text : name, start, end, in);
    };
    const auto text = test::TextEvent;
    const std::vector<std::string> expected = {text("\\t\\t\\t"),
                                               tag("<item id=\\\"301\\\">", 1, 0, 0, "item"),
                                               text("Cu"),
                                               tag("&", 0, 0, 1),
                                               text("t"),
                                               tag("<shortcut>", 1, 0, 0, "shortcut"),
                                               text("Ctrl"),
                                               tag("+", 0, 0, 1),
                                               text("Shift"),
                                               tag("+", 0, 0, 1),
                                               text("X"),
                                               tag("</shortcut>", 0, 1, 0, "shortcut"),
                                               tag("</item>", 0, 1, 0, "item"),
                                               text("\\n"),
                                               text("\\t\\t\\t"),
                                               tag("<separator/>", 0, 0, 0, "separator"),
                                               text("\\n")};
    for (const auto& image : test::FixtureImages("fwd_menus")) {
        std::vector<std::string> lines = Lines(Extract("--events", image).out);
        auto at = std::find(lines.begin(), lines.end(), expected[1]);
        ASSERT_NE(at, lines.end()) << image;
        ASSERT_GE(lines.end() - at, static_cast<long>(expected.size())) << image;
        EXPECT_EQ(std::vector<std::string>(at - 1, at - 1 + static_cast<long>(expected.size())),
                  expected)
            << image;
    }
}

TEST(ExtractMenus, TruncatedMenuIsACorruptedDocument) {
    for (const auto& image : test::FixtureImages("fwd_menu_corrupt")) {
        ExtractRun run = Extract("--events", image);
        EXPECT_EQ(run.status, 1) << image;
        EXPECT_NE(run.err.find("The selected document appears to be corrupted or in an "
                               "invalid/unsupported format.\nPlease verify and try again."),
                  std::string::npos)
            << run.err;
        // Nothing of either menu reaches the host, and the input is not ended.
        for (const std::string& line : Lines(run.out)) {
            EXPECT_EQ(line.find("\"Tag\""), std::string::npos) << line;
            EXPECT_EQ(line.find("EndOfInput"), std::string::npos) << line;
        }
    }
}

} // namespace
} // namespace tervane
