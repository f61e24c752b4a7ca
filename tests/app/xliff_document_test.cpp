#include <gtest/gtest.h>

#include "app/xliff/bilingual.h"
#include "app/xliff/xliff_io.h"

namespace tervane::xliff {
namespace {

Event Open(std::u16string text, std::u16string name) {
    return {Event::Kind::Tag, std::move(text), std::move(name), 1, 0, 0};
}
Event Close(std::u16string name) {
    return {Event::Kind::Tag, u"</" + name + u">", name, 0, 1, 0};
}

// A string table and a menu item with a shortcut, as a forward conversion
// sends them.
EventList Source() {
    return {Open(u"<resources>", u"resources"),
            Event::Text(u"\n\t"),
            Open(u"<menus>", u"menus"),
            Open(u"<menu id=\"1\">", u"menu"),
            Open(u"<item id=\"100\">", u"item"),
            Event::Inline(u"&"),
            Event::Text(u"Open"),
            Open(u"<shortcut>", u"shortcut"),
            Event::Text(u"Ctrl"),
            Event::Inline(u"+"),
            Event::Text(u"O"),
            Close(u"shortcut"),
            Close(u"item"),
            Close(u"menu"),
            Close(u"menus"),
            Open(u"<stringtable>", u"stringtable"),
            Event::Text(u"\n\t\t"),
            Open(u"<string id=\"97\">", u"string"),
            Event::Text(u"Save "),
            Event::Inline(u"%s"),
            Event::Text(u"?"),
            Close(u"string"),
            Open(u"<string id=\"98\">", u"string"),
            Close(u"string"),
            Close(u"stringtable"),
            Close(u"resources")};
}

Document WrittenAndRead(const Document& document) {
    return ReadXliff(WriteXliff(document, "1"), "test.xlf");
}

Unit* Find(Document& document, const std::string& id) {
    for (Group& group : document.groups)
        for (Unit& unit : group.units)
            if (unit.id == id)
                return &unit;
    return nullptr;
}

TEST(BilingualDocument, UnitsOfTheSource) {
    Document document = MakeDocument(Source());
    ASSERT_EQ(document.groups.size(), 2u);
    EXPECT_EQ(document.groups[0].id, "mnu.1");
    EXPECT_EQ(document.groups[1].id, "str.b7");
    std::vector<std::tuple<std::string, std::string, bool, Content>> units;
    for (const Group& group : document.groups)
        for (const Unit& unit : group.units)
            units.emplace_back(unit.id, unit.restype, unit.translate, unit.source);
    const std::vector<std::tuple<std::string, std::string, bool, Content>> expected = {
        {"mnu.1.i100", "menuitem", true, {{false, u"&Open"}}},
        {"mnu.1.i100.shortcut", "shortcut", false, {{false, u"Ctrl"}, {true, u"+"}, {false, u"O"}}},
        {"str.97", "string", true, {{false, u"Save "}, {true, u"%s"}, {false, u"?"}}},
        {"str.98", "string", true, {}},
    };
    EXPECT_EQ(units, expected);
}

// Version values come in a fixed order; one that does not come later than
// the one before begins the next block.
TEST(BilingualDocument, VersionBlocksByTheOrderOfTheirValues) {
    EventList events = {Open(u"<resources>", u"resources"), Open(u"<versioninfo>", u"versioninfo")};
    for (const char16_t* name :
         {u"comments", u"productname", u"productname", u"legaltrademarks", u"comments"}) {
        events.push_back(Open(u"<" + std::u16string(name) + u">", name));
        events.push_back(Event::Text(u"v"));
        events.push_back(Close(name));
    }
    events.push_back(Close(u"versioninfo"));
    events.push_back(Close(u"resources"));
    std::vector<std::string> ids;
    for (const Group& group : MakeDocument(events).groups)
        for (const Unit& unit : group.units)
            ids.push_back(group.id + " " + unit.id);
    const std::vector<std::string> expected = {
        "ver.1 ver.1.comments", "ver.1 ver.1.productname", "ver.2 ver.2.productname",
        "ver.2 ver.2.legaltrademarks", "ver.3 ver.3.comments"};
    EXPECT_EQ(ids, expected);
}

// What XML cannot hold travels as a placeholder of its own and comes back.
TEST(BilingualDocument, TextsSurviveTheXml) {
    const std::vector<std::u16string> texts = {
        u"tab\there, CR\r, LF\n",
        u"<b> & \"q\" ]]> 'a'",
        std::u16string(u"ctl\x01\x1F end"),
        std::u16string(u"lone \xD800 and \xDC00 pair \xD83D\xDE00"),
        std::u16string(u"\xFFFF\xFFFE"),
        u"  edges  ",
    };
    for (const std::u16string& text : texts) {
        Document document = MakeDocument(Source());
        Unit* unit = Find(document, "str.97");
        unit->source = {{false, text}, {true, u"%s<&>"}};
        unit->target = Content{{true, u"%s<&>"}, {false, text}};
        Document read = WrittenAndRead(document);
        Unit* back = Find(read, "str.97");
        ASSERT_NE(back, nullptr);
        EXPECT_EQ(back->source, unit->source);
        EXPECT_EQ(back->target, unit->target);
    }
}

TEST(BilingualDocument, HeaderSurvivesTheXml) {
    Document document = MakeDocument(Source());
    document.original = "sub/app.exe";
    document.sourceLanguage = "en-US";
    document.targetLanguage = "de-DE";
    document.sha256 = std::string(64, 'a');
    document.size = 123456789012;
    Document read = WrittenAndRead(document);
    EXPECT_EQ(read.original, document.original);
    EXPECT_EQ(read.sourceLanguage, "en-US");
    EXPECT_EQ(read.targetLanguage, "de-DE");
    EXPECT_EQ(read.sha256, document.sha256);
    EXPECT_EQ(read.size, document.size);
    EXPECT_FALSE(Find(read, "mnu.1.i100.shortcut")->translate);
}

// A change to the written text of one unit, and the error it must give.
struct FaultRow {
    const char* what;
    std::string from, to;
    std::string unitId;
    const char* message;
};

class DocumentFaults : public testing::TestWithParam<FaultRow> {};

TEST_P(DocumentFaults, OneClearError) {
    const FaultRow& row = GetParam();
    Document document = MakeDocument(Source());
    Find(document, "str.97")->target = Content{{false, u"Sichern "}, {true, u"%s"}};
    std::string xml = WriteXliff(document, "1");
    std::size_t at = xml.find(row.from);
    ASSERT_NE(at, std::string::npos) << row.from;
    xml.replace(at, row.from.size(), row.to);
    // The line of the change.
    int line = 1 + static_cast<int>(std::count(xml.begin(), xml.begin() + at, '\n'));
    try {
        ApplyDocument(Source(), ReadXliff(xml, "test.xlf"));
        FAIL() << "no error";
    } catch (const DocumentError& error) {
        EXPECT_NE(std::string(error.what()).find(row.message), std::string::npos) << error.what();
        EXPECT_EQ(error.UnitId(), row.unitId);
        EXPECT_EQ(error.Line(), line);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Rows, DocumentFaults,
    testing::Values(FaultRow{"malformed", "<target>", "<target state=>", "", "malformed XML"},
                    FaultRow{"removed ph", "<ph id=\"1\">%s</ph></target>", "</target>", "str.97",
                             "lacks the placeholder <ph>%s</ph>"},
                    FaultRow{"added ph", "</target>", "<ph id=\"2\">%d</ph></target>", "str.97",
                             "has the placeholder <ph>%d</ph>"},
                    FaultRow{"changed ph", "<ph id=\"1\">%s</ph></target>",
                             "<ph id=\"1\">%d</ph></target>", "str.97",
                             "lacks the placeholder <ph>%s</ph>"},
                    FaultRow{"unknown id", "<trans-unit id=\"str.98\"", "<trans-unit id=\"str.99\"",
                             "str.99", "no unit of this id"},
                    FaultRow{"stale source", "<source>Save ", "<source>Store ", "str.97", "stale"},
                    FaultRow{"two units of one id", "<trans-unit id=\"str.98\"",
                             "<trans-unit id=\"str.97\"", "str.97", "two units"},
                    FaultRow{"inline code of another form", "<target>", "<target><x id=\"9\"/>",
                             "str.97", "<x>"},
                    FaultRow{"bad character code", "<target>",
                             "<target><ph id=\"8\" ctype=\"x-char\">Q</ph>", "str.97", "U+XXXX"}),
    [](const testing::TestParamInfo<FaultRow>& info) { return std::to_string(info.index); });

TEST(BilingualDocument, MergeTakesTargetsAndKeepsTheRest) {
    Document document = MakeDocument(Source());
    Find(document, "str.97")->target = Content{{true, u"%s"}, {false, u" sichern?"}};
    Find(document, "mnu.1.i100")->target = Content{{false, u"Ö&ffnen && mehr"}};
    // A shortcut may not change: its target is not taken.
    Find(document, "mnu.1.i100.shortcut")->target = Content{{false, u"Strg"}};
    Merged merged = ApplyDocument(Source(), ReadXliff(WriteXliff(document, "1"), "t.xlf"));
    EventList expected = Source();
    // Behind <item id="100">: the hotkey before "ffnen".
    expected.erase(expected.begin() + 5, expected.begin() + 7);
    expected.insert(expected.begin() + 5,
                    {Event::Text(u"Ö"), Event::Inline(u"&"), Event::Text(u"ffnen & mehr")});
    auto string97 =
        std::find(expected.begin(), expected.end(), Open(u"<string id=\"97\">", u"string"));
    string97 = expected.erase(string97 + 1, string97 + 4);
    expected.insert(string97, {Event::Inline(u"%s"), Event::Text(u" sichern?")});
    EXPECT_EQ(merged.events, expected);
    // str.98 has no text to translate: no warning for it.
    EXPECT_TRUE(merged.warnings.empty());
}

// A tool that flattened <ph> into text: the codes come back from the text,
// the longest first where two start at one place.
TEST(BilingualDocument, PlaceholdersFlattenedByAToolComeBack) {
    const std::vector<std::pair<Content, EventList>> rows = {
        {{{false, u"%s sichern?"}}, {Event::Inline(u"%s"), Event::Text(u" sichern?")}},
        {{{false, u"Sichern?"}, {true, u"%s"}}, {Event::Text(u"Sichern?"), Event::Inline(u"%s")}},
    };
    for (const auto& [target, events] : rows) {
        Document document = MakeDocument(Source());
        Find(document, "str.97")->target = target;
        Merged merged = ApplyDocument(Source(), document);
        auto open = std::find(merged.events.begin(), merged.events.end(),
                              Open(u"<string id=\"97\">", u"string"));
        ASSERT_NE(open, merged.events.end());
        EXPECT_EQ(EventList(open + 1, open + 1 + events.size()), events);
    }
    // "%1!d!" holds "%1": the longer code is the one meant.
    Document document = MakeDocument(Source());
    Unit* unit = Find(document, "str.97");
    unit->source = {{true, u"%1"}, {true, u"%1!d!"}};
    EventList source = Source();
    auto at = std::find(source.begin(), source.end(), Event::Inline(u"%s"));
    *(at - 1) = Event::Inline(u"%1");
    *at = Event::Inline(u"%1!d!");
    source.erase(at + 1);
    unit->target = Content{{false, u"%1!d! und %1"}};
    Merged merged = ApplyDocument(source, document);
    at = std::find(merged.events.begin(), merged.events.end(), Event::Inline(u"%1!d!"));
    ASSERT_NE(at, merged.events.end());
    EXPECT_EQ(*(at + 1), Event::Text(u" und "));
    EXPECT_EQ(*(at + 2), Event::Inline(u"%1"));
}

TEST(BilingualDocument, UntranslatedUnitsKeepTheirSourceWithAWarning) {
    Document document = MakeDocument(Source());
    Find(document, "mnu.1.i100")->target = Content{};
    Merged merged = ApplyDocument(Source(), ReadXliff(WriteXliff(document, "1"), "t.xlf"));
    EXPECT_EQ(merged.events, Source());
    ASSERT_EQ(merged.warnings.size(), 2u);
    EXPECT_EQ(merged.warnings[0].unitId, "mnu.1.i100");
    EXPECT_GT(merged.warnings[0].line, 0);
    EXPECT_EQ(merged.warnings[1].unitId, "str.97");
}

} // namespace
} // namespace tervane::xliff
