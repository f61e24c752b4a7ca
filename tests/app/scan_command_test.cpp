// tervane scan as a user runs it: one verdict a file, the exit status, the
// folders it walks, and Wine's files end to end.
#include <gtest/gtest.h>

#include <filesystem>
#include <sys/stat.h>

#include "tests/app/extract_run.h"
#include "tests/support/fixtures.h"

namespace tervane {
namespace {

namespace fs = std::filesystem;
using test::Lines;

struct ScanRun {
    std::vector<std::string> out;
    int status = -1;
};

ScanRun Scan(const std::string& arguments, const std::string& dir = ".") {
    ScanRun run;
    run.out = Lines(test::RunCommand("cd '" + dir + "' && " + TERVANE_BINARY_DIR +
                                         "/tervane scan " + arguments + " 2>/dev/null",
                                     &run.status));
    return run;
}

// Copies of fixtures into a fresh folder, under the names given.
std::string Folder(const std::vector<std::pair<std::string, std::string>>& copies) {
    const std::string dir = test::TempDir();
    for (const auto& [fixture, name] : copies) {
        fs::create_directories(fs::path(dir + "/" + name).parent_path());
        fs::copy_file(test::FixturePath(fixture, "x64"), dir + "/" + name);
    }
    return dir;
}

const std::string kDuplicate = "The selected file appears to be of an invalid or unsupported "
                               "format (The file contains resources with duplicate resource id).";

// A folder is walked for PE files in name order; a file in the way of a copy
// is the user's, and its source is not scanned.
TEST(ScanCommand, VerdictsAndExitStatus) {
    const std::string dir = Folder({{"scan_clean", "clean.dll"},
                                    {"fwd_none", "raw.dll"},
                                    {"scan_duplicates", "twice.dll"},
                                    {"scan_names", "sub/named.exe"},
                                    {"scan_clean", "sub/in-the-way.dll"},
                                    {"fwd_none", "sub/in-the-way_Sniffer.exe"}});
    test::WriteFile(dir + "/sub/notes.txt", {'M', 'Z', '!'});
    ::mkfifo((dir + "/pipe.dll").c_str(), 0644);
    struct Case {
        std::string arguments;
        int status;
        std::vector<std::string> out;
    };
    const Case cases[] = {
        {"clean.dll raw.dll", 0, {"clean.dll: ok", "raw.dll: ok, no localisable resources"}},
        {"clean.dll twice.dll gone.dll",
         1,
         {"clean.dll: ok", "twice.dll: " + kDuplicate, "gone.dll: File not found"}},
        {"--json twice.dll",
         1,
         {R"({"file": "twice.dll", "verdict": "refused", "status": 8, "text": "The selected file )"
          R"(appears to be of an invalid or unsupported format\n(The file contains resources )"
          R"(with duplicate resource id).", "first_language": 1031})"}},
        {"sub",
         1,
         {"sub/in-the-way.dll: not scanned: sub/in-the-way_Sniffer.exe is in the way of the "
          "scanner's copy",
          "sub/in-the-way_Sniffer.exe: ok, no localisable resources", "sub/named.exe: ok"}},
        {"pipe.dll",
         1,
         {"pipe.dll: not scanned: pipe.dll is a FIFO, not a regular file; not read"}},
        {"", 2, {}},
        {"--jsn clean.dll", 2, {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.arguments);
        const ScanRun run = Scan(c.arguments, dir);
        EXPECT_EQ(run.status, c.status);
        EXPECT_EQ(run.out, c.out);
    }
    EXPECT_EQ(test::ReadFile(dir + "/sub/in-the-way_Sniffer.exe"),
              test::ReadFile(test::FixturePath("fwd_none", "x64")));
}

// Every PE file that wine64 installs, through links in a folder of the
// test's own, so that the copies land there: no crash, no hang, a verdict a
// file, nothing left behind, and a file the scanner accepts extracts.
TEST(ScanCommand, EveryFileOfWine) {
    if (!fs::exists(test::WineDir() + "/shell32.dll"))
        GTEST_SKIP() << "wine64 is not installed";
    const std::string dir = test::TempDir();
    std::size_t files = 0;
    for (const std::string arch : {"x86_64-windows", "i386-windows"}) {
        if (!fs::exists(test::WineDir(arch)))
            continue;
        fs::create_directory(dir + "/" + arch);
        for (const auto& entry : fs::directory_iterator(test::WineDir(arch))) {
            fs::create_symlink(entry.path(),
                               dir + "/" + arch + "/" + entry.path().filename().string());
            ++files;
        }
    }
    // One file at a time, then four at once: the same verdicts in the same order.
    std::vector<std::string> lines;
    for (const char* jobs : {"1", "4"}) {
        int status = -1;
        const std::vector<std::string> run =
            Lines(test::RunCommand("timeout 600 " + std::string(TERVANE_BINARY_DIR) +
                                       "/tervane scan --json -j " + jobs + " " + dir,
                                   &status));
        EXPECT_TRUE(status == 0 || status == 1) << "exit status " << status;
        EXPECT_EQ(run.size(), files);
        EXPECT_TRUE(lines.empty() || run == lines)
            << "the verdicts differ with " << jobs << " jobs";
        lines = run;
    }
    std::size_t accepted = 0;
    for (const std::string& line : lines) {
        EXPECT_EQ(line.find("\"verdict\": \"skipped\""), std::string::npos) << line;
        if (line.find("\"verdict\": \"ok\"") == std::string::npos)
            continue;
        ++accepted;
        const std::string file = line.substr(10, line.find('"', 10) - 10);
        int extracted = -1;
        test::RunCommand(std::string(TERVANE_BINARY_DIR) + "/tervane extract '" + file +
                             "' >/dev/null 2>&1",
                         &extracted);
        EXPECT_EQ(extracted, 0) << file;
    }
    EXPECT_GT(accepted, 0u);
    std::size_t left = 0;
    for (const auto& entry : fs::recursive_directory_iterator(dir))
        left += entry.path().filename().string().ends_with("_Sniffer.exe");
    EXPECT_EQ(left, 0u);
}

} // namespace
} // namespace tervane
