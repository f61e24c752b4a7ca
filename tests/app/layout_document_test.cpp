#include <gtest/gtest.h>

#include "tests/app/extract_run.h"
#include "tests/support/fixtures.h"

namespace tervane {
namespace {

// One of each kind, event by event: the frame's group tags, the depth of
// each line, and where lines end.
const char* const kLayoutEvents[] = {
    R"({"event": "StartOfInput", "info": true})",
    R"({"event": "Progress", "value": 0})",
    R"({"event": "Tag", "text": "<resources>", "name": "resources", "start": 1, "end": 0, "inline": 0})",
    R"({"event": "Text", "text": "\n"})",
    R"({"event": "Text", "text": "\t"})",
    R"({"event": "Tag", "text": "<menus>", "name": "menus", "start": 1, "end": 0, "inline": 0})",
    R"({"event": "Text", "text": "\n"})",
    R"({"event": "Text", "text": "\t"})",
    R"({"event": "Tag", "text": "<menu id=\"101\">", "name": "menu", "start": 1, "end": 0, "inline": 0})",
    R"({"event": "Text", "text": "\n"})",
    R"({"event": "Text", "text": "\t\t"})",
    R"({"event": "Tag", "text": "<item id=\"1\">", "name": "item", "start": 1, "end": 0, "inline": 0})",
    R"({"event": "Text", "text": "Open"})",
    R"({"event": "Tag", "text": "</item>", "name": "item", "start": 0, "end": 1, "inline": 0})",
    R"({"event": "Text", "text": "\n"})",
    R"({"event": "Text", "text": "\t"})",
    R"({"event": "Tag", "text": "</menu>", "name": "menu", "start": 0, "end": 1, "inline": 0})",
    R"({"event": "Text", "text": "\n"})",
    R"({"event": "Text", "text": "\t"})",
    R"({"event": "Tag", "text": "</menus>", "name": "menus", "start": 0, "end": 1, "inline": 0})",
    R"({"event": "Text", "text": "\n"})",
    R"({"event": "Text", "text": "\t"})",
    R"({"event": "Tag", "text": "<dialogs>", "name": "dialogs", "start": 1, "end": 0, "inline": 0})",
    R"({"event": "Text", "text": "\n"})",
    R"({"event": "Text", "text": "\t\t"})",
    R"({"event": "Tag", "text": "<dialog id=\"102\">", "name": "dialog", "start": 1, "end": 0, "inline": 0})",
    R"({"event": "Text", "text": "\n"})",
    R"({"event": "Text", "text": "\t\t"})",
    R"({"event": "Tag", "text": "<caption>", "name": "caption", "start": 1, "end": 0, "inline": 0})",
    R"({"event": "Text", "text": "Settings"})",
    R"({"event": "Tag", "text": "</caption>", "name": "caption", "start": 0, "end": 1, "inline": 0})",
    R"({"event": "Text", "text": "\n"})",
    R"({"event": "Text", "text": "\t\t"})",
    R"({"event": "Tag", "text": "<items>", "name": "items", "start": 1, "end": 0, "inline": 0})",
    R"({"event": "Text", "text": "\n"})",
    R"({"event": "Text", "text": "\t\t\t"})",
    R"({"event": "Tag", "text": "<button x=\"10\" y=\"20\" width=\"40\" height=\"14\" id=\"2\">", "name": "button", "start": 1, "end": 0, "inline": 0})",
    R"({"event": "Text", "text": "Close"})",
    R"({"event": "Tag", "text": "</button>", "name": "button", "start": 0, "end": 1, "inline": 0})",
    R"({"event": "Text", "text": "\n"})",
    R"({"event": "Text", "text": "\t\t"})",
    R"({"event": "Tag", "text": "</items>", "name": "items", "start": 0, "end": 1, "inline": 0})",
    R"({"event": "Text", "text": "\n"})",
    R"({"event": "Text", "text": "\t\t"})",
    R"({"event": "Tag", "text": "</dialog>", "name": "dialog", "start": 0, "end": 1, "inline": 0})",
    R"({"event": "Text", "text": "\n"})",
    R"({"event": "Text", "text": "\t"})",
    R"({"event": "Tag", "text": "</dialogs>", "name": "dialogs", "start": 0, "end": 1, "inline": 0})",
    R"({"event": "Text", "text": "\n"})",
    R"({"event": "Text", "text": "\t"})",
    R"({"event": "Tag", "text": "<stringtable>", "name": "stringtable", "start": 1, "end": 0, "inline": 0})",
    R"({"event": "Text", "text": "\n"})",
    R"({"event": "Text", "text": "\t\t"})",
    R"({"event": "Tag", "text": "<string id=\"1\">", "name": "string", "start": 1, "end": 0, "inline": 0})",
    R"({"event": "Text", "text": "Ready"})",
    R"({"event": "Tag", "text": "</string>", "name": "string", "start": 0, "end": 1, "inline": 0})",
    R"({"event": "Text", "text": "\n"})",
    R"({"event": "Text", "text": "\t"})",
    R"({"event": "Tag", "text": "</stringtable>", "name": "stringtable", "start": 0, "end": 1, "inline": 0})",
    R"({"event": "Text", "text": "\n"})",
    R"({"event": "Text", "text": "\t"})",
    R"({"event": "Tag", "text": "<versioninfo>", "name": "versioninfo", "start": 1, "end": 0, "inline": 0})",
    R"({"event": "Text", "text": "\n"})",
    R"({"event": "Text", "text": "\t\t"})",
    R"({"event": "Tag", "text": "<comments>", "name": "comments", "start": 1, "end": 0, "inline": 0})",
    R"({"event": "Text", "text": "Layout sample"})",
    R"({"event": "Tag", "text": "</comments>", "name": "comments", "start": 0, "end": 1, "inline": 0})",
    R"({"event": "Text", "text": "\n"})",
    R"({"event": "Text", "text": "\t"})",
    R"({"event": "Tag", "text": "</versioninfo>", "name": "versioninfo", "start": 0, "end": 1, "inline": 0})",
    R"({"event": "Text", "text": "\n"})",
    R"({"event": "Tag", "text": "</resources>", "name": "resources", "start": 0, "end": 1, "inline": 0})",
    R"({"event": "Text", "text": "\n"})",
};

TEST(LayoutDocument, OneOfEachKindEventByEvent) {
    for (const auto& image : test::FixtureImages("fwd_layout")) {
        test::ExtractRun run = test::Extract("--events", image);
        EXPECT_EQ(run.status, 0) << image;
        // Progress between the visits is the driver's business: leave it out
        // but for the first.
        std::vector<std::string> lines;
        for (const std::string& line : test::Lines(run.out))
            if (line.find("\"Progress\"") == std::string::npos || lines.size() == 1)
                lines.push_back(line);
        ASSERT_GE(lines.size(), 2u) << image;
        EXPECT_EQ(lines.back(), R"({"event": "EndOfInput"})") << image;
        lines.pop_back();
        EXPECT_EQ(lines,
                  std::vector<std::string>(std::begin(kLayoutEvents), std::end(kLayoutEvents)))
            << image;
    }
}

} // namespace
} // namespace tervane
