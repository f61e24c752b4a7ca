#include <algorithm>
#include <gtest/gtest.h>

#include "tests/app/extract_run.h"
#include "tests/support/fixtures.h"

namespace tervane {
namespace {

using test::Lines;

// German before English by language; the block without any of the five
// values is last, gives nothing, and closes the document.
const char* const kVersionDocument =
    "<resources>\n"
    "\t<stringtable>\n"
    "\t\t<string id=\"1\">Hello</string>\n"
    "\t</stringtable>\n"
    "\t<versioninfo>\n"
    "\t\t<comments>Kommentar</comments>\n"
    "\t\t<productname>Tervane EN</productname>\n"
    "\t\t<legaltrademarks>TM</legaltrademarks>\n"
    "\t\t<comments>C:\\path\\n</comments>\n"
    "\t\t<legalcopyright>(c) Zelkor\\n\\rAll rights reserved</legalcopyright>\n"
    "\t\t<productversion>1.2</productversion>\n"
    "\t\t<productname>Tervane 100% & more</productname>\n"
    "\t</versioninfo>\n"
    "</resources>\n";

TEST(ExtractVersion, WholeDocument) {
    for (const auto& image : test::FixtureImages("fwd_version")) {
        test::ExtractRun run = test::Extract("", image);
        EXPECT_EQ(run.out, kVersionDocument) << image;
        EXPECT_EQ(run.status, 0) << image;
    }
}

const auto Tag = test::TagEvent;
const auto Text = test::TextEvent;

// The events from one tag on, exactly.
TEST(ExtractVersion, EventsOfValuesAndFrame) {
    struct Case {
        std::string from;
        std::vector<std::string> events;
    };
    const Case cases[] = {
        {Tag("</string>", "string", 0, 1, 0),
         {Text("\\n"), Text("\\t"), Tag("</stringtable>", "stringtable", 0, 1, 0), Text("\\n"),
          Text("\\t"), Tag("<versioninfo>", "versioninfo", 1, 0, 0), Text("\\n"), Text("\\t\\t"),
          Tag("<comments>", "comments", 1, 0, 0), Text("Kommentar")}},
        {Tag("<legalcopyright>", "legalcopyright", 1, 0, 0),
         {Text("(c) Zelkor"), Tag("\\\\n", "\\\\n", 0, 0, 1), Tag("\\\\r", "\\\\r", 0, 0, 1),
          Text("All rights reserved"), Tag("</legalcopyright>", "legalcopyright", 0, 1, 0),
          Text("\\n"), Text("\\t\\t"), Tag("<productversion>", "productversion", 1, 0, 0)}},
        {Tag("</productname>", "productname", 0, 1, 0),
         {Text("\\n"), Text("\\t"), Tag("</versioninfo>", "versioninfo", 0, 1, 0), Text("\\n"),
          Tag("</resources>", "resources", 0, 1, 0), Text("\\n"),
          R"({"event": "Progress", "value": 100})", R"({"event": "EndOfInput"})"}},
    };
    for (const auto& image : test::FixtureImages("fwd_version")) {
        test::ExtractRun run = test::Extract("--events", image);
        EXPECT_EQ(run.status, 0) << image;
        std::vector<std::string> lines = Lines(run.out);
        for (const Case& c : cases) {
            // The last occurrence: both languages have a productname.
            auto at = std::find(lines.rbegin(), lines.rend(), c.from);
            ASSERT_NE(at, lines.rend()) << c.from;
            auto from = at.base();
            ASSERT_GE(static_cast<std::size_t>(lines.end() - from), c.events.size()) << c.from;
            EXPECT_EQ(std::vector<std::string>(from, from + c.events.size()), c.events)
                << image << " " << c.from;
        }
    }
}

} // namespace
} // namespace tervane
