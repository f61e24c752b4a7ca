#include <gtest/gtest.h>

#include <map>

#include "tests/backward/decoders.h"
#include "tests/backward/round_trip.h"

namespace tervane {
namespace {

using test::ConversionMode;
using test::kTrailer;

struct TextCase {
    const char* name;
    std::string block;
    std::vector<std::pair<std::string, std::u16string>> changes;
    DWORD mode;
    std::map<int, std::string> strings; // changed strings by place in the block
    std::string error;                  // of the exception, and the message without trailer
};

const std::u16string kLongest(4096, u'x');
const std::string kEmpty = "Error: There is no text between the opening and the closing tag "
                           "(string resource \ncontrol 'string' id = '37').\n";

TEST(StringBlockRebuild, TranslatedTextsAndTheirLimits) {
    const TextCase cases[] = {
        {"longer, accented, printf and escapes kept",
         "1",
         {{"[Save ]{%s}[?]", u"[Änderungen an ]{%s}[ speichern?]"},
          {"[100% of ]{%d}", u"[100% von ]{%d}"},
          {"[Line one]{\\r}{\\n}[Line two]", u"[Zeile eins]{\\r}{\\n}[Zeile zwei]"}},
         1,
         {{1, "Änderungen an %s speichern?"},
          {3, "100%% von %d"},
          {4, "a&b"},
          {6, "Zeile eins\r\nZeile zwei"}},
         ""},
        {"the first string of a block",
         "3",
         {{"<string id=\"37\">", u"<string id=\"32\">"}},
         1,
         {{0, "Thirty-seven"}, {5, ""}},
         ""},
        {"the last string of a block",
         "3",
         {{"<string id=\"37\">", u"<string id=\"47\">"}},
         1,
         {{15, "Thirty-seven"}, {5, ""}},
         ""},
        {"at the limit",
         "3",
         {{"[Thirty-seven]", u"[" + kLongest + u"]"}},
         1,
         {{5, Narrow(kLongest)}},
         ""},
        {"one beyond, cut in a preview",
         "3",
         {{"[Thirty-seven]", u"[" + kLongest + u"y]"}},
         0,
         {{5, Narrow(kLongest)}},
         ""},
        {"one beyond, an error in a final conversion",
         "3",
         {{"[Thirty-seven]", u"[" + kLongest + u"y]"}},
         1,
         {},
         "Error: Length of translated text is longer than the allowed 4096 characters (string "
         "id = 37 ,control name = 'string' & id = 37).\n"},
        {"an empty text, an error in a preview too", "3", {{"[Thirty-seven]", u""}}, 0, {}, kEmpty},
        {"a text of inline tags alone", "3", {{"[Thirty-seven]", u"{%d}"}}, 1, {{5, "%d"}}, ""},
    };
    for (const TextCase& c : cases) {
        SCOPED_TRACE(c.name);
        ConversionMode mode(c.mode);
        test::SourceFile source(test::FixturePath("fwd_strings", "x64"));
        auto& block = source.Find(6, c.block);
        auto expected = test::Strings(source.BytesOf(block));
        test::Merge(block, test::Stream(block, c.changes));
        if (!c.error.empty()) {
            EXPECT_EQ(test::RebuildError(block), c.error + kTrailer);
            // Only the empty text is also a message of the run.
            EXPECT_EQ(mode.Messages(),
                      c.error == kEmpty ? std::vector{kEmpty} : std::vector<std::string>{});
            continue;
        }
        const auto written = test::Rebuild(block);
        ASSERT_EQ(written.size(), 1u);
        for (const auto& [place, text] : c.strings)
            expected.at(static_cast<std::size_t>(place)) = text;
        EXPECT_EQ(test::Strings(written[0].bytes), expected);
    }
}

} // namespace
} // namespace tervane
