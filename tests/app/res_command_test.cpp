// tervane res as a user runs it.
#include <gtest/gtest.h>
#include <tuple>

#include "tests/support/fixtures.h"

namespace tervane::test {
namespace {

const std::string kTervane = std::string(TERVANE_BINARY_DIR) + "/tervane";

struct Outcome {
    int status;
    std::string out; // standard output, then standard error
};

Outcome Res(const std::string& arguments) {
    int status = -1;
    std::string out = RunCommand(kTervane + " res " + arguments + " 2>&1", &status);
    return {status, out};
}

TEST(ResCommand, PutGetDeleteRoundTripOnBothArchitectures) {
    const std::string dir = TempDir();
    WriteFile(dir + "/data.bin", {'d', 'a', 't', 'a', 0, 1, 2});
    for (const std::string arch : {"x64", "x86"}) {
        SCOPED_TRACE(arch);
        const std::string file = dir + "/sample." + arch + ".dll";
        WriteFile(file, ReadFile(FixturePath("sample", arch)));
        const std::string key = " --type BLOB --name note --lang 0x407";
        ASSERT_EQ(Res("put " + file + key + " --data " + dir + "/data.bin").status, 0);
        // Names are stored upper-cased: any case finds them again.
        Outcome got = Res("get " + file + " --type blob --name NOTE --lang 1031");
        EXPECT_EQ(got.status, 0);
        EXPECT_EQ(got.out, std::string("data\0\1\2", 7));

        EXPECT_EQ(Res("delete " + file + key).status, 0);
        Outcome gone = Res("get " + file + key);
        EXPECT_EQ(gone.status, 1);
        EXPECT_NE(gone.out.find("The specified resource type cannot be found in the image file."),
                  std::string::npos)
            << gone.out;
        int status = 0;
        std::string windres = RunCommand(std::string(arch == "x64" ? "x86_64" : "i686") +
                                             "-w64-mingw32-windres -i " + file + " -O rc 2>&1",
                                         &status);
        EXPECT_EQ(status, 0) << windres;
    }
}

// Failures print the system's message and leave the file as it was.
TEST(ResCommand, FailuresLeaveTheFileAlone) {
    const std::string file = TempDir() + "/sample.dll";
    const std::vector<unsigned char> original = ReadFile(FixturePath("sample", "x64"));
    WriteFile(file, original);
    const std::string key = " --type 6 --name 1 --lang 0x409";
    const std::tuple<std::string, int, std::string> cases[] = {
        {"delete " + file + " --type 6 --name 1 --lang 0x40c", 1,
         "The specified resource language ID cannot be found in the image file."},
        {"get " + file + " --type 6 --name 1", 2, "--lang is required"},
        {"get " + file + " --type 6 --name 70000 --lang 0", 2, "bad name '70000'"},
        {"rename " + file + key, 2, "unknown command 'rename'"},
    };
    for (const auto& [arguments, status, message] : cases) {
        Outcome outcome = Res(arguments);
        EXPECT_EQ(outcome.status, status) << arguments;
        EXPECT_NE(outcome.out.find(message), std::string::npos) << arguments << outcome.out;
        EXPECT_EQ(ReadFile(file), original) << arguments;
    }
}

} // namespace
} // namespace tervane::test
