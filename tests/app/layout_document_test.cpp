#include <gtest/gtest.h>

#include "tests/app/extract_run.h"
#include "tests/support/fixtures.h"

namespace tervane {
namespace {

// One of each kind, event by event: the frame's group tags, the depth of each
// line, and where lines end. Texts and tags in their JSON form, a line a row.
// clang-format off
const char* const kLayout[] = {
    "<resources>", "\\n",
    "\\t", "<menus>", "\\n",
    "\\t", R"(<menu id=\"101\">)", "\\n",
    "\\t\\t", R"(<item id=\"1\">)", "Open", "</item>", "\\n",
    "\\t", "</menu>", "\\n",
    "\\t", "</menus>", "\\n",
    "\\t", "<dialogs>", "\\n",
    "\\t\\t", R"(<dialog id=\"102\">)", "\\n",
    "\\t\\t", "<caption>", "Settings", "</caption>", "\\n",
    "\\t\\t", "<items>", "\\n",
    "\\t\\t\\t", R"(<button x=\"10\" y=\"20\" width=\"40\" height=\"14\" id=\"2\">)", "Close", "</button>", "\\n",
    "\\t\\t", "</items>", "\\n",
    "\\t\\t", "</dialog>", "\\n",
    "\\t", "</dialogs>", "\\n",
    "\\t", "<stringtable>", "\\n",
    "\\t\\t", R"(<string id=\"1\">)", "Ready", "</string>", "\\n",
    "\\t", "</stringtable>", "\\n",
    "\\t", "<versioninfo>", "\\n",
    "\\t\\t", "<comments>", "Layout sample", "</comments>", "\\n",
    "\\t", "</versioninfo>", "\\n",
    "</resources>", "\\n",
};
// clang-format on

// The event of a row: a tag's name is its first word, and it starts or ends a
// block as its slash says.
std::string Event(const std::string& row) {
    if (row[0] != '<')
        return R"({"event": "Text", "text": ")" + row + "\"}";
    const bool end = row[1] == '/';
    const std::size_t name = end ? 2 : 1;
    return R"({"event": "Tag", "text": ")" + row + R"(", "name": ")" +
           row.substr(name, row.find_first_of(" >", name) - name) + R"(", "start": )" +
           (end ? "0" : "1") + R"(, "end": )" + (end ? "1" : "0") + R"(, "inline": 0})";
}

TEST(LayoutDocument, OneOfEachKindEventByEvent) {
    std::vector<std::string> expected = {R"({"event": "StartOfInput", "info": true})",
                                         R"({"event": "Progress", "value": 0})"};
    for (const char* row : kLayout)
        expected.push_back(Event(row));
    expected.push_back(R"({"event": "EndOfInput"})");
    for (const auto& image : test::FixtureImages("fwd_layout")) {
        test::ExtractRun run = test::Extract("--events", image);
        EXPECT_EQ(run.status, 0) << image;
        // Progress between the visits is the driver's business: leave it out
        // but for the first.
        std::vector<std::string> lines;
        for (const std::string& line : test::Lines(run.out))
            if (line.find("\"Progress\"") == std::string::npos || lines.size() == 1)
                lines.push_back(line);
        EXPECT_EQ(lines, expected) << image;
    }
}

} // namespace
} // namespace tervane
