#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <sstream>

#include "app/xliff/xliff_io.h"
#include "tests/app/extract_run.h"
#include "tests/support/fixtures.h"

namespace tervane {
namespace {

const std::string kTervane = std::string(TERVANE_BINARY_DIR) + "/tervane";
const std::string kSchema =
    std::string(TERVANE_SOURCE_DIR) + "/tests/data/xliff/xliff-core-1.2-strict.xsd";

std::string Text(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

void Write(const std::string& path, const std::string& text) {
    std::ofstream(path, std::ios::binary) << text;
}

// The check of check_xliff.py over files: schema, identity and pseudo, and
// with write the same through the writer.
void CheckDocuments(const std::string& files, bool write = false) {
    const std::string dir = test::TempDir();
    std::string report = test::RunCommand(
        test::DebianPython() + " " + TERVANE_SOURCE_DIR + "/tests/app/check_xliff.py " + kTervane +
        " " + kSchema + " " + dir + (write ? " --write " : " ") + files + " 2>&1");
    std::vector<std::string> lines = test::Lines(report);
    ASSERT_FALSE(lines.empty());
    EXPECT_NE(lines.back().find(" 0 faults"), std::string::npos) << report;
    EXPECT_EQ(lines.back().find(" 0 documents"), std::string::npos) << report;
}

TEST(XliffCommands, FixturesValidateReplayAndPseudo) {
    std::string files;
    for (const char* name : {"fwd_strings", "fwd_menus", "fwd_dialogs", "fwd_version", "fwd_blocks",
                             "fwd_edges", "fwd_layout", "fwd_dlginit_only", "sample"})
        for (const std::string& image : test::FixtureImages(name))
            files += " '" + image + "'";
    CheckDocuments(files);
}

// Files of one language: the writer puts every resource under the target
// language, so one of two languages would take the other's place.
TEST(XliffCommands, WriterTurnsDocumentsIntoFiles) {
    std::string files;
    for (const char* name : {"fwd_menus", "fwd_blocks", "fwd_edges", "fwd_layout"})
        for (const std::string& image : test::FixtureImages(name))
            files += " '" + image + "'";
    CheckDocuments(files, true);
}

TEST(XliffCommands, WineFilesValidateReplayAndPseudo) {
    const std::string dir = test::WineDir();
    if (test::RunCommand("ls " + dir + "/shell32.dll 2>/dev/null").empty())
        GTEST_SKIP() << "wine64 is not installed";
    CheckDocuments(dir + "/*");
}

// The document of fwd_strings, written as a user would.
std::string StringsDocument(const std::string& dir) {
    int status = -1;
    test::RunCommand(kTervane + " extract --no-scan -o " + dir + "/a.xlf --target-lang de-de '" +
                         test::FixturePath("fwd_strings", "x64") + "'",
                     &status);
    EXPECT_EQ(status, 0);
    return Text(dir + "/a.xlf");
}

TEST(XliffCommands, HeaderNamesTheSourceAndTheLanguages) {
    const std::string dir = test::TempDir();
    std::string xml = StringsDocument(dir);
    std::string image = test::FixturePath("fwd_strings", "x64");
    int status = -1;
    std::string sha = test::RunCommand("sha256sum '" + image + "' | cut -c1-64", &status);
    sha.pop_back();
    for (const std::string& expected :
         {std::string("original=\"") + image.substr(0, 0), std::string("datatype=\"winres\""),
          std::string("source-language=\"de-DE\""), std::string("target-language=\"de-DE\""),
          "crc=\"sha256:" + sha + "\"",
          ">" + std::to_string(test::ReadFile(image).size()) + "</count>",
          std::string("<trans-unit id=\"str.1\" resname=\"1\" restype=\"string\"")})
        EXPECT_NE(xml.find(expected), std::string::npos) << expected << "\n" << xml;
}

// Ids made from the resource path, the resource types of XLIFF, the place of
// a control, and the texts in the resource's own notation (&& one ampersand
// where & marks the hotkey).
TEST(XliffCommands, UnitsOfTheFixtures) {
    struct Row {
        const char* fixture;
        std::string id, restype, coord;
        std::u16string source;
    };
    const Row rows[] = {
        {"fwd_dialogs", "dlg.100.caption", "caption", "", u"Print &Setup"},
        {"fwd_dialogs", "dlg.100.c9", "button", "130;40;50;14", u"&Help"},
        {"fwd_dialogs", "dlg.101.c200", "groupbox", "5;5;200;100", u"Outer"},
        {"fwd_dialogs", "dlg.102.c301", "radio", "10;20;60;10", u"&Auto radio"},
        {"fwd_dialogs", "dlg.102.c305", "label", "10;60;60;10", u"A&B"},
        {"fwd_dialogs", "dlg.102.c306", "label", "10;70;60;10", u"A&&B"},
        {"fwd_dialogs", "dlg.102.c307", "label", "10;80;60;10", u"Fish && Chips"},
        {"fwd_dialogs", "dlg.102.s1", "label", "10;120;60;10", u"Static text"},
        {"fwd_dialogs", "dlg.103.c401.i3", "listitem", "", u"Three"},
        {"fwd_menus", "mnu.101.p1", "menuitem", "", u"&File"},
        {"fwd_menus", "mnu.101.i110", "menuitem", "", u"A&&B 100%"},
        {"fwd_menus", "mnu.101.p5.shortcut", "shortcut", "", u"Alt+F4"},
        {"fwd_menus", "mnu.102.i65534", "menuitem", "", u"Back\\slash"},
        {"fwd_version", "ver.1.comments", "x-comments", "", u"Kommentar"},
        {"fwd_version", "ver.2.comments", "x-comments", "", u"C:\\path\\n"},
        {"fwd_strings", "str.1", "string", "", u"Speichern %s?"},
        {"fwd_strings", "str.1~2", "string", "", u"Save %s?"},
    };
    const std::string dir = test::TempDir();
    for (const Row& row : rows) {
        int status = -1;
        test::RunCommand(kTervane + " extract --no-scan -o " + dir + "/u.xlf '" +
                             test::FixturePath(row.fixture, "x86") + "'",
                         &status);
        ASSERT_EQ(status, 0);
        xliff::Document document = xliff::ReadXliff(Text(dir + "/u.xlf"), "u.xlf");
        const xliff::Unit* found = nullptr;
        for (const xliff::Group& group : document.groups)
            for (const xliff::Unit& unit : group.units)
                if (unit.id == row.id)
                    found = &unit;
        ASSERT_NE(found, nullptr) << row.id;
        EXPECT_EQ(found->restype, row.restype) << row.id;
        EXPECT_EQ(found->coord, row.coord) << row.id;
        EXPECT_EQ(xliff::Flatten(found->source), row.source) << row.id;
    }
}

// A change to the document and what merge must say: one line, with the
// document's name and the line, exit status 1, and no output file.
struct BadInputRow {
    const char* what;
    std::string from, to;
    std::string expected; // in the one line of standard error; @ the line changed
};

class MergeBadInput : public testing::TestWithParam<BadInputRow> {};

TEST_P(MergeBadInput, OneErrorAndNoOutput) {
    const BadInputRow& row = GetParam();
    const std::string dir = test::TempDir();
    std::string xml = StringsDocument(dir);
    // A translation, so that a missing placeholder shows.
    std::string target = "<source>Save <ph id=\"1\">%s</ph>?</source>";
    std::size_t at = xml.find(target);
    ASSERT_NE(at, std::string::npos);
    xml.insert(at + target.size(), "<target>Sichern <ph id=\"1\">%s</ph>?</target>");
    at = xml.find(row.from);
    ASSERT_NE(at, std::string::npos) << row.from;
    xml.replace(at, row.from.size(), row.to);
    Write(dir + "/a.xlf", xml);
    std::string expected = row.expected;
    if (std::size_t mark = expected.find('@'); mark != std::string::npos)
        expected.replace(mark, 1,
                         std::to_string(1 + std::count(xml.begin(), xml.begin() + at, '\n')));
    int status = -1;
    std::string err = test::RunCommand(kTervane + " merge --no-scan " + dir + "/a.xlf --dry-run -o " + dir +
                                           "/out 2>&1 >/dev/null",
                                       &status);
    EXPECT_EQ(status, 1) << err;
    EXPECT_EQ(test::Lines(err).size(), 1u) << err;
    EXPECT_NE(err.find(expected), std::string::npos) << expected << "\n" << err;
    EXPECT_EQ(test::RunCommand("ls " + dir + "/out 2>/dev/null"), "");
}

INSTANTIATE_TEST_SUITE_P(
    Rows, MergeBadInput,
    testing::Values(
        BadInputRow{"malformed", "<target>", "<target state=>", "a.xlf:@: malformed XML"},
        BadInputRow{"removed ph", "Sichern <ph id=\"1\">%s</ph>?", "Sichern ?",
                    "a.xlf:@: unit str.1~2: the target lacks the placeholder <ph>%s</ph>"},
        BadInputRow{"added ph", "Sichern <ph id=\"1\">%s</ph>?",
                    "Sichern <ph id=\"1\">%s</ph><ph id=\"2\">%d</ph>?",
                    "a.xlf:@: unit str.1~2: the target has the placeholder <ph>%d</ph>"},
        BadInputRow{"unknown id", "<trans-unit id=\"str.37\"", "<trans-unit id=\"str.38\"",
                    "a.xlf:@: unit str.38: the source file has no unit of this id"},
        BadInputRow{"another file", "crc=\"sha256:", "crc=\"sha256:0",
                    "a.xlf:3: the document was made from another file"}),
    [](const testing::TestParamInfo<BadInputRow>& info) { return std::to_string(info.index); });

TEST(XliffCommands, StatsCountByKind) {
    const std::string dir = test::TempDir();
    StringsDocument(dir);
    int status = -1;
    std::string json = test::RunCommand(kTervane + " stats --json " + dir + "/a.xlf", &status);
    EXPECT_EQ(status, 0);
    // Eight strings, none translated: "Speichern %s?" 1 word, "Save %s?" 1, " " 0,
    // "100% of %d" 2, "a&b" 2, "back\slash" 2, "Line one\r\nLine two" 4,
    // "Thirty-seven" 2.
    EXPECT_NE(json.find("{\"kind\": \"strings\", \"state\": \"untranslated\", \"units\": 8, "
                        "\"words\": 14, \"characters\": 67}"),
              std::string::npos)
        << json;
    EXPECT_NE(json.find("{\"kind\": \"total\", \"state\": \"translated\", \"units\": 0"),
              std::string::npos)
        << json;
}

TEST(XliffCommands, PseudoDialogTextsShowInTheReplay) {
    const std::string dir = test::TempDir();
    int status = -1;
    test::RunCommand(kTervane + " extract --no-scan --pseudo -o " + dir + "/p.xlf '" +
                         test::FixturePath("fwd_dialogs", "x86") + "'",
                     &status);
    ASSERT_EQ(status, 0);
    std::string replay = test::RunCommand(kTervane + " merge --no-scan --dry-run " + dir + "/p.xlf", &status);
    EXPECT_EQ(status, 0);
    // Cancel: six letters, 40 % more is three characters; &Help keeps its hotkey.
    for (const char* text : {"\"text\": \"[Çáñçél ~~]\"", "\"text\": \"Hélp ~]\""})
        EXPECT_NE(replay.find(text), std::string::npos) << text;

    // And in the file the writer makes, in the target language.
    const std::string layout = test::FixturePath("fwd_layout", "x64");
    test::RunCommand(kTervane + " extract --no-scan --pseudo --target-lang fr-FR -o " + dir + "/l.xlf '" +
                         layout + "'",
                     &status);
    ASSERT_EQ(status, 0);
    std::string err = test::RunCommand(
        kTervane + " merge --no-scan " + dir + "/l.xlf -o " + dir + "/l.dll 2>&1 >/dev/null", &status);
    ASSERT_EQ(status, 0) << err;
    std::string written = test::RunCommand(kTervane + " extract --no-scan " + dir + "/l.dll", &status);
    for (const char* text : {"<caption>[Šéttíñgš ~~~]</caption>", ">[Çlöšé ~]</button>",
                             "<string id=\"1\">[Réáðý ~]</string>"})
        EXPECT_NE(written.find(text), std::string::npos) << text << "\n" << written;
    std::string languages = test::RunCommand(kTervane + " list --json " + dir + "/l.dll", &status);
    EXPECT_NE(languages.find("\"lang\": 1036"), std::string::npos) << languages;
}

// Translate Toolkit's road: xliff2po, a translated PO, pomerge back into the
// document (which flattens <ph> into text), and merge into a file.
TEST(XliffCommands, TranslateToolkitRoundTrip) {
    if (test::RunCommand("command -v xliff2po pomerge").empty())
        GTEST_SKIP() << "translate-toolkit is not installed";
    const std::string dir = test::TempDir();
    // Each msgstr the msgid behind "Ü ".
    const std::string translate =
        test::DebianPython() +
        " -c \"import re,sys; t=open(sys.argv[1]).read(); "
        "open(sys.argv[2],'w').write(re.sub(r'msgid \\\"(.+)\\\"\\nmsgstr \\\"\\\"', "
        "lambda m: 'msgid \\\"%s\\\"\\nmsgstr \\\"\\u00dc %s\\\"' % (m.group(1), m.group(1)), "
        "t))\"";
    const std::vector<std::pair<const char*, std::vector<std::string>>> rows = {
        {"fwd_layout",
         {"<item id=\"1\">Ü Open</item>", "<caption>Ü Settings</caption>", ">Ü Close</button>",
          "<string id=\"1\">Ü Ready</string>", "<comments>Ü Layout sample</comments>"}},
        {"fwd_menus",
         {"<item>Ü &File</item>", "<item id=\"100\">Ü &Open...<shortcut>Ctrl+O</shortcut>",
          "<item id=\"110\">Ü A&B 100%</item>"}},
    };
    for (const auto& [fixture, expected] : rows) {
        int status = -1;
        const std::string base = dir + "/" + fixture;
        std::string log = test::RunCommand(
            kTervane + " extract --no-scan --target-lang de-DE -o " + base + ".xlf '" +
                test::FixturePath(fixture, "x64") + "' && xliff2po " + base + ".xlf " + base +
                ".po && " + translate + " " + base + ".po " + base + ".de.po && pomerge -t " +
                base + ".xlf -i " + base + ".de.po -o " + base + ".de.xlf && " + kTervane +
                " merge --no-scan " + base + ".de.xlf -o " + base + ".de.dll 2>&1",
            &status);
        ASSERT_EQ(status, 0) << log;
        std::string written = test::RunCommand(kTervane + " extract --no-scan " + base + ".de.dll", &status);
        for (const std::string& text : expected)
            EXPECT_NE(written.find(text), std::string::npos) << text << "\n" << written;
    }
}

// OmegaT's road: a project whose source is our document (targets copied
// from the sources, which OmegaT translates in place), translations from a
// TMX that OmegaT applies by itself, console-translate, and merge.
TEST(XliffCommands, OmegaTRoundTrip) {
    if (test::RunCommand("command -v omegat").empty())
        GTEST_SKIP() << "omegat is not installed";
    const std::string dir = test::TempDir(), project = dir + "/project";
    int status = -1;
    test::RunCommand("mkdir -p " + project + "/source " + project + "/target " + project +
                         "/tm/auto " + project + "/glossary " + project + "/dictionary " + project +
                         "/omegat " + dir + "/home && cp '" +
                         test::FixturePath("fwd_layout", "x64") + "' " + project + "/app.dll",
                     &status);
    ASSERT_EQ(status, 0);
    test::RunCommand(kTervane + " extract --no-scan --copy-source --target-lang de-DE -o " + project +
                         "/source/app.xlf " + project + "/app.dll",
                     &status);
    ASSERT_EQ(status, 0);
    Write(project + "/omegat.project",
          "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n"
          "<omegat><project version=\"1.0\">"
          "<source_dir>__DEFAULT__</source_dir><target_dir>__DEFAULT__</target_dir>"
          "<tm_dir>__DEFAULT__</tm_dir><glossary_dir>__DEFAULT__</glossary_dir>"
          "<glossary_file>__DEFAULT__</glossary_file><dictionary_dir>__DEFAULT__</dictionary_dir>"
          "<source_lang>en-US</source_lang><target_lang>de-DE</target_lang>"
          "<source_tok>org.omegat.tokenizer.LuceneEnglishTokenizer</source_tok>"
          "<target_tok>org.omegat.tokenizer.LuceneGermanTokenizer</target_tok>"
          "<sentence_seg>false</sentence_seg>"
          "<support_default_translations>true</support_default_translations>"
          "<remove_tags>false</remove_tags></project></omegat>\n");
    const std::vector<std::pair<std::string, std::string>> pairs = {
        {"Open", "Öffnen"},
        {"Settings", "Einstellungen"},
        {"Close", "Schließen"},
        {"Ready", "Bereit"},
        {"Layout sample", "Layoutbeispiel"}};
    std::string tmx = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<tmx version=\"1.4\">"
                      "<header creationtool=\"tervane-test\" creationtoolversion=\"1\" "
                      "segtype=\"paragraph\" o-tmf=\"none\" adminlang=\"en-US\" "
                      "srclang=\"en-US\" datatype=\"plaintext\"/><body>\n";
    for (const auto& [source, target] : pairs)
        tmx += "<tu><tuv xml:lang=\"en-US\"><seg>" + source +
               "</seg></tuv><tuv xml:lang=\"de-DE\"><seg>" + target + "</seg></tuv></tu>\n";
    Write(project + "/tm/auto/de.tmx", tmx + "</body></tmx>\n");
    std::string log = test::RunCommand(
        "HOME=" + dir + "/home omegat " + project + " --mode=console-translate 2>&1", &status);
    ASSERT_EQ(status, 0) << log;
    std::string err = test::RunCommand(
        kTervane + " merge --no-scan " + project + "/target/app.xlf -o " + dir + "/app.de.dll 2>&1", &status);
    ASSERT_EQ(status, 0) << err;
    std::string written = test::RunCommand(kTervane + " extract --no-scan " + dir + "/app.de.dll", &status);
    for (const char* text :
         {"<item id=\"1\">Öffnen</item>", "<caption>Einstellungen</caption>", ">Schließen</button>",
          "<string id=\"1\">Bereit</string>", "<comments>Layoutbeispiel</comments>"})
        EXPECT_NE(written.find(text), std::string::npos) << text << "\n" << written;
    // Before OmegaT every target was its source, still to translate; after, none is.
    std::string before =
        test::RunCommand(kTervane + " stats --json " + project + "/source/app.xlf", &status);
    std::string after =
        test::RunCommand(kTervane + " stats --json " + project + "/target/app.xlf", &status);
    const std::string total = "{\"kind\": \"total\", \"state\": \"translated\", \"units\": ";
    EXPECT_NE(before.find(total + "0,"), std::string::npos) << before;
    EXPECT_NE(after.find(total + "5,"), std::string::npos) << after;
}

// The writer's messages name a resource (and a control, though not always by
// its id); merge says where that stands in the document. Two buttons of
// dialog 100 given one hotkey draw an Alert; the file is written all the same.
TEST(XliffCommands, WritersMessagesPointIntoTheDocument) {
    const std::string dir = test::TempDir();
    int status = -1;
    test::RunCommand(kTervane + " extract --no-scan --target-lang de-DE -o " + dir + "/d.xlf '" +
                         test::FixturePath("fwd_dialogs", "x64") + "'",
                     &status);
    ASSERT_EQ(status, 0);
    std::string xml = Text(dir + "/d.xlf");
    for (auto [source, target] :
         {std::pair{"<source>OK</source>", "<target>&amp;Ok</target>"},
          std::pair{"<source>Cancel</source>", "<target>&amp;Oh</target>"}}) {
        std::size_t at = xml.find(source);
        ASSERT_NE(at, std::string::npos);
        xml.insert(at + std::strlen(source), target);
    }
    Write(dir + "/d.xlf", xml);
    std::string err = test::RunCommand(
        kTervane + " merge --no-scan " + dir + "/d.xlf -o " + dir + "/d.dll 2>&1 >/dev/null", &status);
    EXPECT_EQ(status, 0) << err;
    std::size_t group = xml.find("<group id=\"dlg.100\"");
    ASSERT_NE(group, std::string::npos);
    std::string line = std::to_string(1 + std::count(xml.begin(), xml.begin() + group, '\n'));
    std::size_t alert = err.find("Alert: Hotkey 'O' character has been duplicated");
    ASSERT_NE(alert, std::string::npos) << err;
    EXPECT_NE(err.find("[" + dir + "/d.xlf:" + line + ": group dlg.100]", alert), std::string::npos)
        << err;
}

} // namespace
} // namespace tervane
