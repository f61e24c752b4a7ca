#include <gtest/gtest.h>

#include <sstream>

#include "frame/diagnostics/exceptions.h"
#include "model/dialog_resource.h"
#include "model/dlginit_table.h"
#include "tests/backward/decoders.h"
#include "tests/backward/round_trip.h"

namespace tervane {
namespace {

using test::ConversionMode;
using test::kTrailer;
using namespace std::string_literals;

const std::u16string kLongest(256, u'd');

struct DialogCase {
    const char* name;
    std::string dialog;
    std::vector<std::pair<std::string, std::u16string>> changes;
    DWORD mode;
    std::map<int, std::string> titles; // by place: 0 the dialog's, then the controls'
    std::vector<std::string> messages;
    std::string error;
};

// A control's id in the messages is the first quoted value behind "id" in
// its tag, which is that of width="...".
TEST(DialogRebuild, TranslatedTitlesAndTheirChecks) {
    const DialogCase cases[] = {
        {"a caption keeps a single '&', a hotkey its mark",
         "100",
         {{"[Print ][&][Setup]", u"[Druck][&][einrichtung]"},
          {"[OK]", u"[Übernehmen]"},
          {"{&}[Help]", u"{&}[Hilfe]"}},
         1,
         {{0, "'Druck&einrichtung'"}, {1, "'Übernehmen'"}, {3, "'&Hilfe'"}},
         {},
         ""},
        {"an '&' of a label's text doubled, a '%' doubled",
         "102",
         {{"[Fish & Chips]", u"[R&D]"}, {"[100% done ]", u"[100% fertig ]"}},
         1,
         {{8, "'R&&D'"}, {11, "'100%% fertig %d'"}},
         {},
         ""},
        {"no doubling where the label shows '&' as it is",
         "102",
         {{"[A][&][B]", u"[X][&][Y]"}},
         1,
         {{6, "'X&Y'"}},
         {},
         ""},
        {"a text of inline tags alone keeps the source's",
         "102",
         {{"[100% done ]{%d}", u"{%d}"}},
         1,
         {},
         {},
         ""},
        {"a clash of hotkeys 'a' and 'A'",
         "102",
         {{"{&}[Check]", u"{&}[aa]"}},
         1,
         {{1, "'&aa'"}},
         {"Alert: Hotkey 'A' character has been duplicated(dialog resource id = 102\ncontrol "
          "'checkbox' id = '60',control 'radiobutton' id = '60').\n"},
         ""},
        {"a hotkey mark at the end of a label",
         "102",
         {{"{&}[Check]", u"[Check]{&}"}},
         1,
         {{1, "'Check&'"}},
         {"Alert: Invalid hotkey character at the end of text(dialog resource id = 102\ncontrol "
          "'checkbox' id = '60').\n"},
         ""},
        {"at the limit",
         "102",
         {{"{&}[Check]", u"[" + kLongest + u"]"}},
         1,
         {{1, "'" + Narrow(kLongest) + "'"}},
         {},
         ""},
        {"one beyond, cut in a preview",
         "102",
         {{"{&}[Check]", u"[" + kLongest + u"e]"}},
         0,
         {{1, "'" + Narrow(kLongest) + "'"}},
         {},
         ""},
        {"one beyond, an error in a final conversion",
         "102",
         {{"{&}[Check]", u"[" + kLongest + u"e]"}},
         1,
         {},
         {},
         "Error: Length of translated text is longer than the allowed 256 characters (dialog id "
         "= 102 ,control name = 'checkbox' & id = 60).\n" +
             kTrailer},
        {"an empty text",
         "102",
         {{"{&}[Check]", u""}},
         0,
         {},
         {},
         "Error: There is no text between the opening and the closing tag (dialog resource  id = "
         "102\ncontrol 'checkbox' id = '60').\n" +
             kTrailer},
        {"titles that join a list or give no element take no new text",
         "301",
         {{"[After]", u"[Danach]"}},
         1,
         {{3, "'Danach'"}},
         {},
         ""},
        {"an edit's title is no segment: the host's stream lacks it",
         "102",
         {{"[secret]", u""}},
         1,
         {},
         {},
         ""},
        {"the same for a combo box's title", "301", {{"[Pick]", u""}}, 1, {}, {}, ""},
        {"a line end in a named dialog",
         "SETTINGS",
         {{"[Line one]{\\n}", u"[Zeile eins]{\\n}"}},
         1,
         {{1, "'Zeile eins\nLine two'"}},
         {},
         ""},
    };
    for (const DialogCase& c : cases) {
        SCOPED_TRACE(c.name);
        ConversionMode mode(c.mode);
        test::SourceFile source(
            test::FixturePath(c.dialog == "301" ? "bwd_dialogs" : "fwd_dialogs", "x64"));
        auto& dialog = static_cast<CDialogResource&>(source.Find(5, c.dialog));
        auto expected = test::Titles(source.BytesOf(dialog));
        test::Merge(dialog, test::Stream(dialog, c.changes));
        if (!c.error.empty()) {
            EXPECT_EQ(test::RebuildError(dialog), c.error);
            continue;
        }
        const auto written = test::Rebuild(dialog);
        ASSERT_GE(written.size(), 1u);
        for (const auto& [place, title] : c.titles)
            expected.at(static_cast<std::size_t>(place)) = title;
        EXPECT_EQ(test::Titles(written[0].bytes), expected);
        EXPECT_EQ(mode.Messages(), c.messages);
    }
}

// The items of the list boxes go back through the init data, in the
// target's code page, with their escapes as control characters.
TEST(DialogRebuild, ListItemsGoBackThroughTheInitData) {
    struct Case {
        const char* name;
        std::vector<std::pair<std::string, std::u16string>> changes;
        std::vector<std::pair<WORD, std::string>> records; // control: text with its zero byte
        std::string error;
    };
    const std::u16string longest(32767, u'l');
    const Case cases[] = {
        {"accented, in code page 1252",
         {{"<item>[Two]</item>", u"<item>[Zwöi]</item>"},
          {"<item>[Beta]</item>", u"<item>[B]</item>"}},
         {{400, "Alpha\0"s},
          {400, "B\0"s},
          {401, "One\0"s},
          {401, "Zw\xF6i\0"s},
          {401, "Three\0"s}},
         ""},
        {"an item at the limit",
         {{"<item>[One]</item>", u"<item>[" + longest + u"]</item>"}},
         {{400, "Alpha\0"s},
          {400, "Beta\0"s},
          {401, std::string(32767, 'l') + '\0'},
          {401, "Two\0"s},
          {401, "Three\0"s}},
         ""},
        {"an item one beyond",
         {{"<item>[One]</item>", u"<item>[" + longest + u"x]</item>"}},
         {},
         "Error: Length of translated text is longer than the allowed 32767 characters (dialog "
         "id = 103 ,control name = 'item').\n" +
             kTrailer},
        {"an empty item",
         {{"<item>[One]</item>", u"<item></item>"}},
         {},
         "Error: There is no text between the opening and the closing tag (dialog resource  id = "
         "103\ncontrol 'item').\n" +
             kTrailer},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        ConversionMode mode(1);
        test::SourceFile source(test::FixturePath("fwd_dialogs", "x86"));
        auto& dialog = static_cast<CDialogResource&>(source.Find(5, "103"));
        test::Merge(dialog, test::Stream(dialog, c.changes));
        if (!c.error.empty()) {
            EXPECT_EQ(test::RebuildError(dialog), c.error);
            continue;
        }
        const auto written = test::Rebuild(dialog, 0x407);
        ASSERT_EQ(written.size(), 2u);
        test::Bytes expected;
        for (const auto& [control, text] : c.records) {
            expected.U16(control).U16(control == 400 ? 0x403 : 0x180);
            expected.U16(static_cast<WORD>(text.size())).U16(0);
            expected.bytes.insert(expected.bytes.end(), text.begin(), text.end());
        }
        expected.U16(0);
        EXPECT_EQ(written[1].bytes, expected.bytes);
    }
}

} // namespace
} // namespace tervane
