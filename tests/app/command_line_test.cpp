// The command line as a user types it: what each mistake answers, with which
// exit status, and that help and version come from the same declarations.
#include <gtest/gtest.h>

#include "tests/support/fixtures.h"

namespace tervane::test {
namespace {

struct Outcome {
    int status = -1;
    std::string out, err;
};

// Runs tervane with arguments in a folder that holds the reader fixture under
// two names, one of them starting with '-'.
Outcome Tervane(const std::string& arguments) {
    static const std::string dir = [] {
        std::string folder = TempDir();
        WriteFile(folder + "/reader.dll", ReadFile(FixturePath("reader", "x64")));
        WriteFile(folder + "/-reader.dll", ReadFile(FixturePath("reader", "x64")));
        return folder;
    }();
    Outcome outcome;
    outcome.out = RunCommand("cd '" + dir + "' && " + TERVANE_BINARY_DIR + "/tervane " + arguments +
                                 " 2>'" + dir + "/err'",
                             &outcome.status);
    auto err = ReadFile(dir + "/err");
    outcome.err.assign(err.begin(), err.end());
    return outcome;
}

std::string Wrong(const std::string& command, const std::string& what) {
    return "tervane " + command + ": " + what + "\nRun 'tervane " + command +
           " --help' for more information.\n";
}

TEST(CommandLine, MistakesAreNamedWithStatusTwo) {
    struct Case {
        const char* arguments;
        std::string err;
    };
    const Case cases[] = {
        {"extract -o", Wrong("extract", "-o: 1 required OUT missing")},
        {"extract reader.dll --trace", Wrong("extract", "--trace: 1 required FILE missing")},
        {"tokens --kind", Wrong("tokens", "--kind: 1 required string|menu|dialog missing")},
        {"tokens --kind word x",
         Wrong("tokens", "--kind: unknown kind 'word' (string, menu or dialog)")},
        {"list --foo reader.dll", Wrong("list", "unknown option '--foo'")},
        // Not a file that happens to start with '-'.
        {"list -reader.dll", Wrong("list", "unknown option '-reader.dll'")},
        {"list", Wrong("list", "FILE is required")},
        {"list reader.dll reader.dll",
         Wrong("list", "The following argument was not expected: reader.dll")},
        {"tables reader.dll",
         Wrong("tables", "The following argument was not expected: reader.dll")},
        {"convert reader.dll",
         "tervane: unknown command 'convert'\nRun 'tervane --help' for more information.\n"},
        {"res", Wrong("res", "A subcommand is required")},
        {"res rename reader.dll", Wrong("res", "unknown command 'rename'")},
        {"res get reader.dll --type 10 --name 1", Wrong("res get", "--lang is required")},
        {"res get reader.dll --type 10 --name 65536 --lang 0",
         Wrong("res get", "--name: bad name '65536'")},
        {"res get reader.dll --type 10 --name 1 --lang 0x1g",
         Wrong("res get", "--lang: bad language '0x1g'")},
        {"res put reader.dll --type 10 --name 1 --lang 0", Wrong("res put", "--data is required")},
        {"extract --events --bogus reader.dll", Wrong("extract", "unknown option '--bogus'")},
    };
    for (const Case& c : cases) {
        Outcome outcome = Tervane(c.arguments);
        EXPECT_EQ(outcome.status, 2) << c.arguments;
        EXPECT_EQ(outcome.err, c.err) << c.arguments;
        EXPECT_EQ(outcome.out, "") << c.arguments;
    }
}

// After "--", a word that starts with '-' is a text or a file, not an option.
TEST(CommandLine, DoubleDashEndsTheOptions) {
    struct Case {
        const char* arguments;
        const char* outStart;
    };
    const Case cases[] = {
        {"tokens --kind string -- -x%s", "{\"type\": 1, \"text\": \"-x\"}\n"},
        {"tokens --kind menu -- --help", "{\"type\": 1, \"text\": \"--help\"}\n"},
        {"list -- -reader.dll", "TYPE "},
        {"list --json -- -reader.dll", "{\"type\": "},
        // The scanner refuses reader.dll: a rewrite of one resource shrinks it.
        {"extract --no-scan --events -- -reader.dll",
         "{\"event\": \"StartOfInput\", \"info\": true}\n"},
    };
    for (const Case& c : cases) {
        Outcome outcome = Tervane(c.arguments);
        EXPECT_EQ(outcome.status, 0) << c.arguments << outcome.err;
        EXPECT_EQ(outcome.out.substr(0, std::string(c.outStart).size()), c.outStart) << c.arguments;
    }
    // Options before "--" still count.
    Outcome get = Tervane("res get --type 10 --name 1 --lang 0x409 -- -reader.dll");
    EXPECT_EQ(get.status, 0) << get.err;
    EXPECT_EQ(get.out, Tervane("res get reader.dll --type 10 --name 1 --lang 0x409").out);
}

// Help at every level names the command's whole path and each of its options;
// it goes to standard output with status 0, but to standard error with 2 when
// no command is given at all.
TEST(CommandLine, HelpAtEveryLevelAndVersion) {
    struct Case {
        const char* arguments;
        std::vector<std::string> texts;
    };
    const Case cases[] = {
        {"--help",
         {"Usage: tervane [OPTIONS] COMMAND", "--version", "  list ", "  res ", "  tokens ",
          "  tables ", "  extract "}},
        {"-h", {"Usage: tervane [OPTIONS] COMMAND"}},
        {"list --help", {"Usage: tervane list [OPTIONS] FILE", "--json"}},
        {"res --help", {"Usage: tervane res [OPTIONS] COMMAND", "  get ", "  put ", "  delete "}},
        {"res put --help",
         {"Usage: tervane res put [OPTIONS] FILE", "--type T", "--name N", "--lang L",
          "--data DATAFILE", "-o OUT"}},
        {"res delete reader.dll --help", {"Usage: tervane res delete [OPTIONS] FILE", "-o OUT"}},
        {"tokens --help", {"Usage: tervane tokens [OPTIONS] TEXT", "--kind string|menu|dialog"}},
        {"tables --help", {"Usage: tervane tables [OPTIONS]"}},
        {"extract --help",
         {"Usage: tervane extract [OPTIONS] FILE", "--events", "--document", "-o OUT",
          "--trace FILE", "--no-scan", "First the scanner is asked"}},
        {"merge --help",
         {"Usage: tervane merge [OPTIONS]", "--events EVENTS", "--no-scan",
          "First the scanner is asked"}},
    };
    for (const Case& c : cases) {
        Outcome outcome = Tervane(c.arguments);
        EXPECT_EQ(outcome.status, 0) << c.arguments;
        EXPECT_EQ(outcome.err, "") << c.arguments;
        for (const std::string& text : c.texts)
            EXPECT_NE(outcome.out.find(text), std::string::npos) << c.arguments << ": " << text;
    }
    Outcome version = Tervane("--version");
    EXPECT_EQ(version.status, 0);
    EXPECT_EQ(version.out, "tervane 1.0.0.1\n");
    Outcome nothing = Tervane("");
    EXPECT_EQ(nothing.status, 2);
    EXPECT_EQ(nothing.out, "");
    EXPECT_NE(nothing.err.find("Usage: tervane [OPTIONS] COMMAND"), std::string::npos);
}

} // namespace
} // namespace tervane::test
