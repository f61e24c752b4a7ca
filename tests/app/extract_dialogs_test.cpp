#include <algorithm>
#include <gtest/gtest.h>

#include "tests/app/extract_run.h"
#include "tests/support/fixtures.h"

namespace tervane {
namespace {

using test::ExtractRun;
using test::Lines;
const auto Text = test::TextEvent;

const char* const kDialogsDocument =
    "<resources>\n"
    "\t<dialogs>\n"
    "\t\t<dialog id=\"SETTINGS\">\n"
    "\t\t<caption>Named</caption>\n"
    "\t\t<items>\n"
    "\t\t\t<button x=\"10\" y=\"10\" width=\"50\" height=\"14\" id=\"800\">Line one\\nLine "
    "two</button>\n"
    "\t\t</items>\n"
    "\t\t</dialog>\n"
    "\t\t<dialog id=\"100\">\n"
    "\t\t<caption>Print &Setup</caption>\n"
    "\t\t<items>\n"
    "\t\t\t<button x=\"130\" y=\"10\" width=\"50\" height=\"14\" id=\"1\">OK</button>\n"
    "\t\t\t<button x=\"5\" y=\"5\" width=\"50\" height=\"14\" id=\"2\">Cancel</button>\n"
    "\t\t\t<button x=\"130\" y=\"40\" width=\"50\" height=\"14\" id=\"9\">&Help</button>\n"
    "\t\t</items>\n"
    "\t\t</dialog>\n"
    "\t\t<dialog id=\"101\">\n"
    "\t\t<caption>Options</caption>\n"
    "\t\t<items>\n"
    "\t\t\t<label x=\"10\" y=\"150\" width=\"30\" height=\"8\" id=\"205\">Below</label>\n"
    "\t\t\t<groupbox x=\"5\" y=\"5\" width=\"200\" height=\"100\" id=\"200\">\n"
    "\t\t\t<caption>Outer</caption>\n"
    "\t\t\t<items>\n"
    "\t\t\t\t<label x=\"100\" y=\"30\" width=\"40\" height=\"8\" id=\"203\">Outer label</label>\n"
    "\t\t\t\t<groupbox x=\"10\" y=\"20\" width=\"80\" height=\"40\" id=\"201\">\n"
    "\t\t\t\t<items>\n"
    "\t\t\t\t\t<label x=\"15\" y=\"30\" width=\"40\" height=\"8\" id=\"202\">Inner "
    "label</label>\n"
    "\t\t\t\t</items>\n"
    "\t\t\t\t</groupbox>\n"
    "\t\t\t\t<label x=\"205\" y=\"105\" width=\"30\" height=\"8\" id=\"204\">Corner</label>\n"
    "\t\t\t</items>\n"
    "\t\t\t</groupbox>\n"
    "\t\t</items>\n"
    "\t\t</dialog>\n"
    "\t\t<dialog id=\"102\">\n"
    "\t\t<items>\n"
    "\t\t\t<checkbox x=\"10\" y=\"10\" width=\"60\" height=\"10\" id=\"300\">&Check</checkbox>\n"
    "\t\t\t<radiobutton x=\"10\" y=\"20\" width=\"60\" height=\"10\" id=\"301\">&Auto "
    "radio</radiobutton>\n"
    "\t\t\t<button x=\"10\" y=\"30\" width=\"60\" height=\"10\" id=\"302\">Radio</button>\n"
    "\t\t\t<checkbox x=\"10\" y=\"40\" width=\"60\" height=\"10\" id=\"303\">Drawn</checkbox>\n"
    "\t\t\t<button x=\"10\" y=\"50\" width=\"60\" height=\"10\" id=\"304\" "
    "hidden=\"yes\">Hidden</button>\n"
    "\t\t\t<label style=\"SS_NOPREFIX\" x=\"10\" y=\"60\" width=\"60\" height=\"10\" "
    "id=\"305\">A&B</label>\n"
    "\t\t\t<label style=\"SS_NOPREFIX\" x=\"10\" y=\"70\" width=\"60\" height=\"10\" "
    "id=\"306\">A&&B</label>\n"
    "\t\t\t<label x=\"10\" y=\"80\" width=\"60\" height=\"10\" id=\"307\">Fish & Chips</label>\n"
    // An edit's start tag has no indent.
    "<edit style=\"ES_PASSWORD\" x=\"10\" y=\"90\" width=\"60\" height=\"10\" "
    "id=\"308\">secret</edit>\n"
    "<edit style=\"ES_UPPERCASE ES_NUMBER\" x=\"10\" y=\"100\" width=\"60\" height=\"10\" "
    "id=\"309\">KEY</edit>\n"
    "\t\t\t<label x=\"-1\" y=\"110\" width=\"60\" height=\"10\" id=\"65534\">100% done "
    "%d</label>\n"
    "\t\t\t<label x=\"10\" y=\"120\" width=\"60\" height=\"10\">Static text</label>\n"
    "\t\t\t<groupbox x=\"100\" y=\"140\" width=\"20\" height=\"10\" id=\"312\">\n"
    "\t\t\t<caption>Empty box</caption>\n"
    "\t\t\t</groupbox>\n"
    "\t\t</items>\n"
    "\t\t</dialog>\n"
    "\t\t<dialog id=\"103\">\n"
    "\t\t<items>\n"
    // A combobox with a title and init data stands twice.
    "\t\t\t<combobox style=\"CBS_UPPERCASE\" x=\"10\" y=\"10\" width=\"80\" height=\"40\" "
    "id=\"400\">\n"
    "Pick\t\t\t</combobox>\n"
    "\t\t\t<combobox style=\"CBS_UPPERCASE\" x=\"10\" y=\"10\" width=\"80\" height=\"40\" "
    "id=\"400\">\n"
    "\t\t\t\t<item>Alpha</item>\n"
    "\t\t\t\t<item>Beta</item>\n"
    "\t\t\t</combobox>\n"
    "\t\t\t<listbox x=\"10\" y=\"30\" width=\"80\" height=\"40\" id=\"401\">\n"
    "\t\t\t\t<item>One</item>\n"
    "\t\t\t\t<item>Two</item>\n"
    "\t\t\t\t<item>Three</item>\n"
    "\t\t\t</listbox>\n"
    "\t\t</items>\n"
    "\t\t</dialog>\n"
    "\t\t<dialog id=\"105\">\n"
    "\t\t<caption>Only a title</caption>\n"
    "\t\t</dialog>\n"
    "\t\t<dialog id=\"106\">\n"
    "\t\t<caption>Empty edit</caption>\n"
    "\t\t</dialog>\n"
    "\t</dialogs>\n"
    "</resources>\n";

TEST(ExtractDialogs, WholeDocument) {
    struct Case {
        const char* fixture;
        const char* document;
    };
    const Case cases[] = {
        {"fwd_dialogs", kDialogsDocument},
        {"fwd_dialogs_skipped", "<resources>\n\t<stringtable>\n\t\t<string id=\"1\">Only</string>\n"
                                "\t</stringtable>\n</resources>\n"},
    };
    for (const Case& c : cases) {
        for (const auto& image : test::FixtureImages(c.fixture)) {
            ExtractRun run = test::Extract("", image, true);
            EXPECT_EQ(run.status, 0) << image;
            EXPECT_EQ(run.out, c.document) << image;
        }
    }
}

TEST(ExtractDialogs, TracesOfTheReader) {
    for (const auto& image : test::FixtureImages("fwd_dialogs")) {
        ExtractRun run = test::Extract("", image, true);
        for (const char* text :
             {"DS_SETFONT is set", "-----Dialog id = 104 has been skipped-----\n",
              "!!!!!Dialog id = 107 has been skipped, there is no translatable contents.!!!!!\n"})
            EXPECT_NE(run.trace.find(text), std::string::npos) << text;
        EXPECT_EQ(run.out.find("DS_SETFONT"), std::string::npos);
    }
}

std::string Tag(const std::string& text, const std::string& name, int start, int end) {
    return test::TagEvent(text, name, start, end, 0);
}

// What the plain document does not show: which marks are inline tags and
// which are text.
TEST(ExtractDialogs, EventsOfACaptionAndAButton) {
    const std::vector<std::string> caption = {
        Tag("<caption>", "caption", 1, 0),  Text("Print "), Text("&"), Text("Setup"),
        Tag("</caption>", "caption", 0, 1), Text("\\n")};
    const std::vector<std::string> button = {test::TagEvent("&", "&", 0, 0, 1), Text("Help"),
                                             Tag("</button>", "button", 0, 1), Text("\\n")};
    const std::string help =
        Tag(R"(<button x=\"130\" y=\"40\" width=\"50\" height=\"14\" id=\"9\">)", "button", 1, 0);
    for (const auto& image : test::FixtureImages("fwd_dialogs")) {
        std::vector<std::string> lines = Lines(test::Extract("--events", image).out);
        auto at = std::search(lines.begin(), lines.end(), caption.begin(), caption.end());
        EXPECT_NE(at, lines.end()) << image;
        at = std::find(lines.begin(), lines.end(), help);
        ASSERT_GE(lines.end() - at, 5) << image;
        EXPECT_EQ(std::vector<std::string>(at + 1, at + 5), button) << image;
    }
}

} // namespace
} // namespace tervane
