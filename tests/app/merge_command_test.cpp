// tervane merge as a user runs it: a document's events edited and merged
// back, with every failure leaving the source as it was, the target absent
// and no work file behind.
#include <gtest/gtest.h>

#include <cctype>

#include <filesystem>
#include <string>

#include "frame/conversion_state.h"
#include "tests/app/extract_run.h"
#include "tests/support/fixtures.h"

namespace tervane {
namespace {

// A row's description as the name of its test.
template <typename Info> std::string RowName(const Info& info) {
    std::string name;
    for (const char* c = info.param.what; *c; ++c)
        name += std::isalnum(static_cast<unsigned char>(*c)) ? *c : '_';
    return name;
}

namespace fs = std::filesystem;

std::string Tag(const std::string& text, const std::string& name, int start, int end,
                int inlineMark) {
    return "{\"event\": \"Tag\", \"text\": \"" + text + "\", \"name\": \"" + name +
           "\", \"start\": " + std::to_string(start) + ", \"end\": " + std::to_string(end) +
           ", \"inline\": " + std::to_string(inlineMark) + "}\n";
}
std::string Open(const std::string& text, const std::string& name) {
    return Tag(text, name, 1, 0, 0);
}
std::string Close(const std::string& name) {
    return Tag("</" + name + ">", name, 0, 1, 0);
}
std::string Inline(const std::string& text) {
    return Tag(text, text, 0, 0, 1);
}
std::string Text(const std::string& text) {
    return "{\"event\": \"Text\", \"text\": \"" + text + "\"}\n";
}

struct Merge {
    int status = -1;
    std::string out, err;
};

// A copy of the sample beside its events, in a folder of its own.
class MergeRun {
public:
    MergeRun() : dir_(test::TempDir()), source_(dir_ + "/sample.dll") {
        fs::copy_file(test::FixturePath("sample", "x64"), source_);
        events_ = test::Extract("--events", source_).out;
    }
    Merge Run(const std::string& events, const std::string& options = "--lang de-DE") {
        test::WriteFile(dir_ + "/ev.jsonl", {events.begin(), events.end()});
        Merge merge;
        merge.out = test::RunCommand(std::string(TERVANE_BINARY_DIR) +
                                         "/tervane merge --no-scan --events " + dir_ +
                                         "/ev.jsonl --source " + source_ + " -o " + target_ + " " +
                                         options + " 2>" + dir_ + "/err",
                                     &merge.status);
        auto err = test::ReadFile(dir_ + "/err");
        merge.err.assign(err.begin(), err.end());
        return merge;
    }
    const std::string& Events() const { return events_; }
    const std::string& Source() const { return source_; }
    const std::string& Target() const { return target_; }
    // What the folder holds but the source, the events and the error text.
    std::vector<std::string> Others() const {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(dir_)) {
            const std::string name = entry.path().filename();
            if (name != "sample.dll" && name != "ev.jsonl" && name != "err")
                names.push_back(name);
        }
        return names;
    }

private:
    std::string dir_, source_, target_ = dir_ + "/out.dll", events_;
};

const std::string kCut = "cut"; // as the edit's new text: the document ends before from

std::string Edited(std::string events, const std::string& from, const std::string& to) {
    const std::size_t at = events.find(from);
    EXPECT_NE(at, std::string::npos) << from;
    if (at == std::string::npos)
        return events;
    if (to == kCut)
        return events.substr(0, at) + "{\"event\": \"EndOfInput\"}\n";
    return events.replace(at, from.size(), to);
}

const std::string kTrailer = kVerificationTrailer;

struct DamageRow {
    const char* what;
    std::string from, to; // the edit of the events
    std::string message;  // what standard error holds
};

void PrintTo(const DamageRow& row, std::ostream* out) {
    *out << row.what;
}

class Damage : public ::testing::TestWithParam<DamageRow> {};

// Each Error ends the run before the target is touched.
TEST_P(Damage, FailsWithTheSourceKeptAndNoFileLeft) {
    const DamageRow& row = GetParam();
    MergeRun run;
    const auto source = test::ReadFile(run.Source());
    const Merge merge = run.Run(Edited(run.Events(), row.from, row.to));
    EXPECT_EQ(merge.status, 1);
    EXPECT_NE(merge.err.find("tervane merge: " + run.Source() + ": " + row.message),
              std::string::npos)
        << merge.err;
    EXPECT_EQ(test::ReadFile(run.Source()), source);
    EXPECT_EQ(run.Others(), std::vector<std::string>());
}

INSTANTIATE_TEST_SUITE_P(
    Sample, Damage,
    ::testing::Values(
        DamageRow{"a dropped tag", Close("label"), "",
                  "Error: Unexpected tag '<button x=\"75\" y=\"55\" width=\"50\" height=\"14\" "
                  "id=\"1\">' found, tag '</label>' is expected(dialog id = 102 ,control name = "
                  "'label' & id = 180).\n" +
                      kTrailer},
        DamageRow{"a changed position", "x=\\\"75\\\"", "x=\\\"76\\\"",
                  "Error: Unexpected tag '<button x=\"76\" y=\"55\" width=\"50\" height=\"14\" "
                  "id=\"1\">' found, tag '<button x=\"75\" y=\"55\" width=\"50\" height=\"14\" "
                  "id=\"1\">' is expected(dialog id = 102).\n" +
                      kTrailer},
        DamageRow{"a tag of another resource", "id=\\\"17\\\"", "id=\\\"18\\\"",
                  "Error: Unexpected tag '<string id=\"18\">' found, tag '<string id=\"17\">' is "
                  "expected(string id = 17).\n" +
                      kTrailer},
        DamageRow{"a placeholder moved out of its string", Inline("%s") + Text("?"),
                  Text("?") + Close("string") + Inline("%s"),
                  "Error: The tag '%s' has been deleted (string id = 2,control name = 'string' & "
                  "id = 2)." +
                      kTrailer},
        DamageRow{"a conversion added", Inline("%s"), Inline("%s") + Inline("%d"),
                  "Error: The tag '%d' has been added (string id = 2,control name = 'string' & "
                  "id = 2)." +
                      kTrailer},
        DamageRow{"a document cut off", Close("versioninfo"), kCut,
                  "Error: Unexpected end found, tag 'versioninfo' is expected.\n" + kTrailer},
        DamageRow{"a tag behind the root", Close("resources"),
                  Close("resources") + Open("<x>", "x"),
                  "Error: The tag 'x' has been added after the resource context.\n" + kTrailer},
        DamageRow{"a string emptied", Text("Ready"), "",
                  "Error: There is no text between the opening and the closing tag (string "
                  "resource \ncontrol 'string' id = '17').\n" +
                      kTrailer},
        DamageRow{"a string beyond its limit", Text("Ready"), Text(std::string(4097, 'x')),
                  "Error: Length of translated text is longer than the allowed 4096 characters "
                  "(string id = 17 ,control name = 'string' & id = 17).\n" +
                      kTrailer}),
    [](const auto& info) { return RowName(info); });

// A source that is gone is the host's reading failure.
TEST(Merge, MissingSource) {
    MergeRun run;
    fs::remove(run.Source());
    const Merge merge = run.Run(run.Events());
    EXPECT_EQ(merge.status, 1);
    EXPECT_NE(merge.err.find("Source file not found, make sure the source file is present in the "
                             "following path.\n('" +
                             run.Source() + "'.)"),
              std::string::npos)
        << merge.err;
    EXPECT_FALSE(fs::exists(run.Target()));
}

struct AlertRow {
    const char* what;
    std::string from, to;
    std::string message; // the line on standard error, behind the file
};

void PrintTo(const AlertRow& row, std::ostream* out) {
    *out << row.what;
}

class Alerts : public ::testing::TestWithParam<AlertRow> {};

// Alerts and Warnings stop nothing: one line each, and the target is written.
TEST_P(Alerts, WritesTheTarget) {
    const AlertRow& row = GetParam();
    MergeRun run;
    const Merge merge = run.Run(Edited(run.Events(), row.from, row.to));
    EXPECT_EQ(merge.status, 0) << merge.err;
    EXPECT_NE(merge.err.find(run.Source() + ": " + row.message + "\n"), std::string::npos)
        << merge.err;
    EXPECT_TRUE(fs::exists(run.Target()));
    EXPECT_EQ(run.Others(), std::vector<std::string>{"out.dll"});
}

INSTANTIATE_TEST_SUITE_P(
    Sample, Alerts,
    ::testing::Values(
        AlertRow{"a surplus hotkey", Text("xit"), Text("x") + Inline("&") + Text("it"),
                 "Alert: The tag '&' has been added (menu id = 101,control name = 'item' & id = "
                 "40002)."},
        AlertRow{"a shortcut deleted",
                 Open("<shortcut>", "shortcut") + Text("Ctrl") + Inline("+") + Text("O") +
                     Close("shortcut"),
                 "",
                 "Alert: Shortcut key has been deleted(menu resource id = 101, control name = "
                 "'item' id = 40001)"},
        AlertRow{"a shortcut added", Text("xit") + Close("item"),
                 Text("xit") + Open("<shortcut>", "shortcut") + Text("Ctrl") + Inline("+") +
                     Text("X") + Close("shortcut") + Close("item"),
                 "Alert: Shortcut key tags (<shortcut>, +, </shortcut>.) have been added to menu "
                 "resource id = 101, control name = 'item' & id = 40002)."}),
    [](const auto& info) { return RowName(info); });

TEST(Merge, MessagesAsJsonLines) {
    MergeRun run;
    const Merge merge =
        run.Run(Edited(run.Events(), Text("xit"), Text("x") + Inline("&") + Text("it")),
                "--lang 0x407 --json");
    EXPECT_EQ(merge.status, 0) << merge.err;
    EXPECT_EQ(merge.out, "{\"file\": \"" + run.Source() +
                             "\", \"severity\": \"Alert\", \"message\": \"Alert: The tag '&' has "
                             "been added (menu id = 101,control name = 'item' & id = 40002).\\n\"}"
                             "\n");
}

// The language as a number or a tag; anything else is a wrong command line.
TEST(Merge, Languages) {
    const struct {
        const char* lang;
        int status;
        const char* language; // as list shows it
    } rows[] = {{"1031", 0, "0x0407"}, {"0x40C", 0, "0x040C"},  {"pt-br", 0, "0x0416"},
                {"xx-YY", 2, nullptr}, {"0x10000", 2, nullptr}, {"12a", 2, nullptr}};
    for (const auto& row : rows) {
        MergeRun run;
        const Merge merge = run.Run(run.Events(), std::string("--lang ") + row.lang);
        EXPECT_EQ(merge.status, row.status) << row.lang << merge.err;
        if (row.language == nullptr)
            continue;
        const std::string listed =
            test::RunCommand(std::string(TERVANE_BINARY_DIR) + "/tervane list " + run.Target());
        for (const std::string& line : test::Lines(listed)) {
            if (line.find("(STRING)") != std::string::npos) {
                EXPECT_NE(line.find(row.language), std::string::npos) << line;
            }
        }
    }
}

} // namespace
} // namespace tervane
