// extract and merge ask the scanner first, as a host does: a refused file is
// not converted, its folder keeps no copy, and --no-scan goes on regardless.
#include <cstdio>
#include <gtest/gtest.h>
#include <unistd.h>

#include "tests/support/fixtures.h"

namespace tervane::test {
namespace {

const std::string kTervane = std::string(TERVANE_BINARY_DIR) + "/tervane";
const std::string kRefused =
    "The selected file appears to be of an invalid or unsupported format\n";

using Bytes = std::vector<unsigned char>;

struct Outcome {
    int status = -1;
    std::string err;
};

Outcome Tervane(const std::string& dir, const std::string& arguments) {
    Outcome outcome;
    RunCommand("cd '" + dir + "' && " + kTervane + " " + arguments + " >out.txt 2>err.txt",
               &outcome.status);
    auto err = ReadFile(dir + "/err.txt");
    outcome.err.assign(err.begin(), err.end());
    return outcome;
}

std::string Sha256(const std::string& path) {
    return RunCommand("sha256sum '" + path + "' | cut -c1-64");
}

// What the command left in the folder, beside its own standard output and error.
std::string Listing(const std::string& dir) {
    return RunCommand("ls -A '" + dir + "' | grep -v '^out.txt$' | grep -v '^err.txt$'");
}

TEST(ScanFirst, RefusedFilesAreNotConverted) {
    struct Case {
        const char* fixture;
        const char* arguments;
        int status;
        std::string err; // the whole of standard error; "*" for any
        bool written;    // out.xml or out.dll exists afterwards
    };
    const std::string extract = "tervane extract: in.dll: ", merge = "tervane merge: in.dll: ";
    const std::string codePages =
        kRefused + "(The file contains resources with more than one language).\n";
    const std::string duplicates =
        kRefused + "(The file contains resources with duplicate resource id).\n";
    const std::string truncation =
        kRefused + "(Attempt to update resources in target file results in truncation).\n";
    const char* const kMerge = "merge --events in.jsonl --source in.dll --lang 1031 -o out.dll";
    const Case cases[] = {
        {"scan_code_pages", "extract in.dll -o out.xml", 1, extract + codePages, false},
        {"scan_duplicates", "extract --events in.dll -o out.xml", 1, extract + duplicates, false},
        {"scan_truncation", "extract in.dll -o out.xml", 1, extract + truncation, false},
        {"scan_code_pages", kMerge, 1, merge + codePages, false},
        {"scan_duplicates", kMerge, 1, merge + duplicates, false},
        {"scan_truncation", kMerge, 1, merge + truncation, false},
        // --no-scan converts what the scanner refuses, or fails as the
        // conversion itself would.
        {"scan_code_pages", "extract --no-scan in.dll -o out.xml", 0, "", true},
        {"scan_duplicates", "extract --no-scan in.dll -o out.xml", 0, "", true},
        {"scan_truncation", "extract --no-scan in.dll -o out.xml", 0, "", true},
        {"scan_code_pages",
         "merge --no-scan --events in.jsonl --source in.dll --lang 1031 -o out.dll", 0, "*", true},
        {"scan_truncation",
         "merge --no-scan --events in.jsonl --source in.dll --lang 1031 -o out.dll", 0, "*", true},
        {"scan_duplicates",
         "merge --no-scan --events in.jsonl --source in.dll --lang 1031 -o out.dll", 0, "*", true},
        // A clean file goes through with the scan, as it does without it.
        {"scan_clean", "extract in.dll -o out.xml", 0, "", true},
        {"scan_clean", kMerge, 0, "", true},
        {"fwd_none", "extract in.dll -o out.xml", 0,
         "tervane extract: in.dll: nothing to convert: no string table, menu, dialog or version "
         "value holds a text\n",
         true},
    };
    for (const char* arch : {"x86", "x64"}) {
        for (const Case& c : cases) {
            SCOPED_TRACE(std::string(c.fixture) + " (" + arch + "): " + c.arguments);
            const std::string dir = TempDir();
            WriteFile(dir + "/in.dll", ReadFile(FixturePath(c.fixture, arch)));
            RunCommand("cd '" + dir + "' && " + kTervane +
                       " extract --events --no-scan in.dll >in.jsonl 2>/dev/null");
            const std::string input = Sha256(dir + "/in.dll");
            const std::string listing = Listing(dir);

            const Outcome outcome = Tervane(dir, c.arguments);
            EXPECT_EQ(outcome.status, c.status) << outcome.err;
            if (c.err != "*") {
                EXPECT_EQ(outcome.err, c.err);
            }
            EXPECT_EQ(Sha256(dir + "/in.dll"), input);
            const std::string out =
                dir + (std::string(c.arguments).starts_with("merge") ? "/out.dll" : "/out.xml");
            const bool exists = ::access(out.c_str(), F_OK) == 0;
            EXPECT_EQ(exists, c.written);
            const std::vector<unsigned char> written = exists ? ReadFile(out) : Bytes();
            std::remove(out.c_str());
            // No copy left beside the input, nor any other file.
            EXPECT_EQ(Listing(dir), listing);
            // What the scan lets through is converted as it is without it.
            std::string arguments = c.arguments;
            if (c.status == 0 && arguments.find("--no-scan") == std::string::npos) {
                arguments.insert(arguments.find(' '), " --no-scan");
                EXPECT_EQ(Tervane(dir, arguments).status, 0);
                EXPECT_EQ(ReadFile(out), written);
            }
        }
    }
}

// A file where the scanner's copy would go is the user's: the conversion
// stops rather than overwrite it, and --no-scan converts beside it.
TEST(ScanFirst, UsersFileWhereTheCopyGoes) {
    const std::pair<std::string, std::string> cases[] = {
        {"extract in.dll -o out.xml",
         "tervane extract: in.dll: not scanned: in_Sniffer.exe is in the way of the scanner's "
         "copy\n"},
        {"merge --events in.jsonl --source in.dll --lang 1031 -o out.dll",
         "tervane merge: in.dll: not scanned: in_Sniffer.exe is in the way of the scanner's "
         "copy\n"},
        {"extract --no-scan in.dll -o out.xml", ""},
    };
    for (const auto& [arguments, err] : cases) {
        SCOPED_TRACE(arguments);
        const std::string dir = TempDir();
        WriteFile(dir + "/in.dll", ReadFile(FixturePath("scan_clean", "x64")));
        WriteFile(dir + "/in_Sniffer.exe", {'m', 'i', 'n', 'e'});
        RunCommand("cd '" + dir + "' && " + kTervane +
                   " extract --no-scan --events in.dll >in.jsonl");
        const Outcome outcome = Tervane(dir, arguments);
        EXPECT_EQ(outcome.status, err.empty() ? 0 : 1);
        EXPECT_EQ(outcome.err, err);
        EXPECT_EQ(ReadFile(dir + "/in_Sniffer.exe"), Bytes({'m', 'i', 'n', 'e'}));
        EXPECT_EQ(::access((dir + "/out.xml").c_str(), F_OK) == 0, err.empty());
    }
}

} // namespace
} // namespace tervane::test
