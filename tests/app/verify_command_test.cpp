// tervane verify as a translator runs it: documents as extract writes them,
// pseudo-translated, and damaged the ways a translator damages them; and
// merge, which must refuse exactly the documents with errors.
#include <gtest/gtest.h>

#include <fstream>
#include <regex>
#include <sstream>

#include "tests/app/extract_run.h"
#include "tests/support/fixtures.h"

namespace tervane {
namespace {

const std::string kTervane = std::string(TERVANE_BINARY_DIR) + "/tervane";

std::string Text(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

void Write(const std::string& path, const std::string& text) {
    std::ofstream(path, std::ios::binary) << text;
}

struct Outcome {
    std::string out;
    int status = -1;
};

// Runs in dir, where the plug-in saves its copy.
Outcome Tervane(const std::string& dir, const std::string& arguments) {
    Outcome run;
    run.out = test::RunCommand("cd '" + dir + "' && " + kTervane + " " + arguments + " 2>&1",
                               &run.status);
    return run;
}

std::string Extract(const std::string& dir, const std::string& image, const std::string& option,
                    const std::string& name) {
    Outcome run = Tervane(dir, "extract --no-scan " + option + " '" + image + "' -o " + name);
    EXPECT_EQ(run.status, 0) << run.out;
    return dir + "/" + name;
}

// The line of the unit's target, or of the unit itself when it has none.
int LineOf(const std::string& xml, const std::string& unitId, const std::string& element) {
    std::istringstream in(xml);
    int number = 0;
    bool inUnit = false;
    for (std::string line; std::getline(in, line);) {
        ++number;
        if (line.find("<trans-unit id=\"" + unitId + "\"") != std::string::npos) {
            inUnit = true;
            if (element == "trans-unit")
                return number;
        }
        if (inUnit && line.find("<" + element) != std::string::npos)
            return number;
    }
    return 0;
}

std::string SetTarget(const std::string& xml, const std::string& unitId,
                      const std::string& target) {
    const std::size_t unit = xml.find("<trans-unit id=\"" + unitId + "\"");
    EXPECT_NE(unit, std::string::npos) << unitId;
    const std::size_t source = xml.find("</source>", unit);
    const std::size_t at = source + std::string("</source>").size();
    return xml.substr(0, at) + "\n        <target>" + target + "</target>" + xml.substr(at);
}

std::string RemoveUnit(const std::string& xml, const std::string& unitId) {
    const std::size_t unit = xml.find("<trans-unit id=\"" + unitId + "\"");
    EXPECT_NE(unit, std::string::npos) << unitId;
    const std::size_t end = xml.find("</trans-unit>", unit) + std::string("</trans-unit>\n").size();
    const std::size_t start = xml.rfind('\n', unit) + 1;
    return xml.substr(0, start) + xml.substr(end);
}

TEST(VerifyCommand, UntouchedAndPseudoDocumentsPass) {
    const std::string dir = test::TempDir();
    for (const char* name : {"verify_doc", "fwd_menus", "fwd_blocks", "fwd_layout", "fwd_edges"}) {
        for (const std::string& image : test::FixtureImages(name)) {
            const std::string xlf = Extract(dir, image, "--xliff", "u.xlf");
            const std::string before = Text(xlf);
            Outcome run = Tervane(dir, "verify u.xlf");
            EXPECT_EQ(run.status, 0) << image << "\n" << run.out;
            EXPECT_EQ(run.out, "0 errors, 0 warnings, 0 notes\n") << image;
            EXPECT_EQ(Text(xlf), before) << "the document changed";

            Extract(dir, image, "--pseudo", "p.xlf");
            run = Tervane(dir, "verify p.xlf");
            EXPECT_EQ(run.status, 0) << image << "\n" << run.out;
            EXPECT_NE(run.out.find("0 errors, "), std::string::npos) << run.out;
        }
    }
    // Neither the plug-in's copy nor anything else is left behind.
    Outcome left = Tervane(dir, "ls");
    EXPECT_EQ(left.out.find("TervaneFilter_VerificationPlugin"), std::string::npos) << left.out;
}

struct Damage {
    const char* name;
    std::string (*apply)(const std::string& xml);
    const char* unit;    // where the finding stands
    const char* element; // target, source or trans-unit; group for the resource's line
    const char* finding; // "severity [code] message"
};

const Damage kDamages[] = {
    {"deleted conversion",
     [](const std::string& x) { return SetTarget(x, "str.1", "Jetzt speichern?"); }, "str.1",
     "target", "error [17] The tag '%s' has been deleted."},
    {"duplicated conversion",
     [](const std::string& x) {
         return SetTarget(x, "str.1", "<ph id=\"1\">%s</ph> <ph id=\"2\">%s</ph> speichern?");
     },
     "str.1", "target", "error [16] The tag '%s' has been inserted."},
    {"swapped conversions",
     [](const std::string& x) {
         return SetTarget(x, "str.4", "<ph id=\"2\">%s</ph> hat <ph id=\"1\">%d</ph> Dateien");
     },
     "str.4", "target", "error [40] Tag order has been changed. Tag '%d' was expected."},
    {"swapped numbered placeholders",
     [](const std::string& x) {
         return SetTarget(x, "str.2", "<ph id=\"2\">%2</ph>: Datei <ph id=\"1\">%1</ph>");
     },
     "str.2", "target", "note [40] Tag order has been changed. Tag '%1' was expected."},
    {"removed segment", [](const std::string& x) { return RemoveUnit(x, "str.3"); }, "str.1",
     "group", "error [95] The text content is empty."},
    {"empty target", [](const std::string& x) { return SetTarget(x, "str.3", ""); }, "str.3",
     "trans-unit", "error [95] The text content is empty."},
    {"hotkey twice in a menu",
     [](const std::string& x) { return SetTarget(x, "mnu.101.i101", "&amp;Offen"); },
     "mnu.101.i101", "target", "warning [8] The hotkey 'O' has been duplicated."},
    {"hotkey twice in a dialog",
     [](const std::string& x) { return SetTarget(x, "dlg.201.c2", "&amp;Abbrechen"); },
     "dlg.201.c2", "target", "warning [8] The hotkey 'A' has been duplicated."},
    {"hotkey at the end",
     [](const std::string& x) { return SetTarget(x, "mnu.101.i102", "Ende&amp;"); }, "mnu.101.i102",
     "target", "warning [9] Some Text has to follow the hotkey '&' placeholder."},
    {"changed shortcut",
     [](const std::string& x) {
         return SetTarget(x, "mnu.101.i101.shortcut", "Ctrl<ph id=\"1\">+</ph>O");
     },
     "mnu.101.i101.shortcut", "trans-unit",
     "warning [10] The shortcut 'Ctrl+O' has been duplicated."},
    {"menu item past its limit",
     [](const std::string& x) { return SetTarget(x, "mnu.101.i102", std::string(257, 'x')); },
     "mnu.101.i102", "target",
     "error [95] The text length is longer than the allowed 256 characters "},
    {"combo box partly translated",
     [](const std::string& x) { return SetTarget(x, "dlg.201.c300.i1", "Rot"); }, "dlg.201.c1",
     "group",
     "note [96] All Text Item in the combo box control \\t\\t\\t\\t\\t\\t\\t\\t\\t\\t\\t\\thave "
     "not "
     "been translated. \\t\\t\\t\\t\\t\\t\\t\\t\\t\\t\\t\\t\\n\\n Please translate all the text "
     "item and then try again."},
    {"combo box with an item less",
     [](const std::string& x) { return RemoveUnit(x, "dlg.201.c300.i3"); }, "dlg.201.c1", "group",
     "error [95] The text content is empty."},
};

class VerifyDamage : public testing::TestWithParam<Damage> {};

// The group's line: the line of the <group> around the unit.
int GroupLineOf(const std::string& xml, const std::string& unitId) {
    const int unit = LineOf(xml, unitId, "trans-unit");
    std::istringstream in(xml);
    int number = 0, group = 0;
    for (std::string line; std::getline(in, line) && number < unit;) {
        ++number;
        if (line.find("<group ") != std::string::npos)
            group = number;
    }
    return group;
}

TEST_P(VerifyDamage, FindingAtItsLineAndMergeAgrees) {
    const Damage& damage = GetParam();
    const std::string dir = test::TempDir();
    const std::string image = test::FixturePath("verify_doc", "x86");
    const std::string untouched = Text(Extract(dir, image, "--xliff", "u.xlf"));
    const std::string damaged = damage.apply(untouched);
    ASSERT_NE(damaged, untouched);
    Write(dir + "/d.xlf", damaged);

    const int line = std::string(damage.element) == "group"
                         ? GroupLineOf(damaged, damage.unit)
                         : LineOf(damaged, damage.unit, damage.element);
    ASSERT_GT(line, 0);
    Outcome run = Tervane(dir, "verify d.xlf");
    const std::regex expected(
        "d\\.xlf:" + std::to_string(line) + ":[0-9]+: " +
        std::regex_replace(damage.finding, std::regex(R"([.^$|()\[\]{}*+?\\])"), R"(\$&)") + "\n");
    EXPECT_TRUE(std::regex_search(run.out, expected)) << damage.finding << " at " << line << "\n"
                                                      << run.out;
    const bool errors = run.out.find(": error [") != std::string::npos;
    EXPECT_EQ(run.status, errors ? 1 : 0) << run.out;
    EXPECT_EQ(Text(dir + "/d.xlf"), damaged) << "the document changed";

    Outcome merge = Tervane(dir, "merge --no-scan d.xlf --lang de-DE -o d.dll");
    EXPECT_EQ(merge.status != 0, errors) << merge.out;
}

INSTANTIATE_TEST_SUITE_P(Documents, VerifyDamage, testing::ValuesIn(kDamages),
                         [](const testing::TestParamInfo<Damage>& info) {
                             std::string name = info.param.name;
                             for (char& c : name)
                                 if (!std::isalnum(static_cast<unsigned char>(c)))
                                     c = '_';
                             return name;
                         });

TEST(VerifyCommand, JsonLinesAndCommandLine) {
    const std::string dir = test::TempDir();
    const std::string image = test::FixturePath("verify_doc", "x64");
    const std::string xml = Text(Extract(dir, image, "--xliff", "u.xlf"));
    Write(dir + "/d.xlf", SetTarget(xml, "str.1", "Jetzt speichern?"));
    Outcome run = Tervane(dir, "verify --json d.xlf");
    EXPECT_EQ(run.status, 1);
    EXPECT_NE(run.out.find("{\"file\": \"d.xlf\", \"line\": " +
                           std::to_string(LineOf(xml, "str.1", "source") + 1)),
              std::string::npos)
        << run.out;
    EXPECT_NE(run.out.find("\"severity\": \"error\", \"code\": 17, \"message\": \"The tag '%s' "
                           "has been deleted.\"}"),
              std::string::npos)
        << run.out;
    EXPECT_EQ(run.out.find(" errors, "), std::string::npos) << "no summary in JSON";

    // The source named on the command line when the document's is elsewhere.
    Outcome moved = Tervane(dir, "verify d.xlf --source '" + image + "'");
    EXPECT_EQ(moved.status, 1) << moved.out;
    EXPECT_EQ(Tervane(dir, "verify").status, 2);
    EXPECT_EQ(Tervane(dir, "verify d.xlf --bogus").status, 2);
}

} // namespace
} // namespace tervane
