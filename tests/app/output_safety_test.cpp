// Every command that writes a file, against unlucky targets and hostile
// inputs: the exit status, the message, the input's SHA-256 before and after,
// and what became of the target.
#include <functional>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/support/fixtures.h"

namespace tervane::test {
namespace {

const std::string kTervane = std::string(TERVANE_BINARY_DIR) + "/tervane";
const std::vector<unsigned char> kOld = {'o', 'l', 'd', '\n'};

struct Outcome {
    int status = -1;
    std::string out, err;
};

Outcome Tervane(const std::string& dir, const std::string& arguments) {
    Outcome outcome;
    outcome.out = RunCommand("cd '" + dir + "' && " + kTervane + " " + arguments + " 2>err.txt",
                             &outcome.status);
    auto err = ReadFile(dir + "/err.txt");
    outcome.err.assign(err.begin(), err.end());
    return outcome;
}

// Empty for anything but a regular file, which reading could block on.
std::string Sha256(const std::string& path) {
    return RunCommand("test -f '" + path + "' && sha256sum '" + path + "' | cut -c1-64");
}

bool Exists(const std::string& path) {
    struct stat info {};
    return ::lstat(path.c_str(), &info) == 0;
}

mode_t Mode(const std::string& path) {
    struct stat info {};
    ::stat(path.c_str(), &info);
    return info.st_mode & 07777;
}

mode_t Umask() {
    mode_t mask = ::umask(0);
    ::umask(mask);
    return mask;
}

// Only what the test made: a failed command leaves no temporary file behind.
std::string Listing(const std::string& dir) {
    return RunCommand("ls -A '" + dir + "' | grep -v '^err.txt$'");
}

// A folder with the input in.dll, a resource to put, and an old target.
std::string Folder() {
    std::string dir = TempDir();
    WriteFile(dir + "/in.dll", ReadFile(FixturePath("fwd_strings", "x64")));
    WriteFile(dir + "/data.bin", {'n', 'e', 'w'});
    return dir;
}

struct Command {
    const char* arguments; // OUT stands for the target
    // The complete result, checked in the folder after a success.
    std::function<void(const std::string& dir)> complete;
};

std::string With(std::string arguments, const std::string& out) {
    return arguments.replace(arguments.find("OUT"), 3, out);
}

// extract goes without the scan: in.dll holds a string block in two
// languages, which the scanner refuses, and the refusal has a test of its own.
const std::vector<Command>& Commands() {
    static const std::vector<Command> commands = {
        {"extract --no-scan in.dll -o OUT",
         [](const std::string& dir) {
             EXPECT_EQ(ReadFile(dir + "/out"), ReadFile(dir + "/expected"));
         }},
        {"extract --no-scan --events in.dll -o OUT",
         [](const std::string& dir) {
             EXPECT_EQ(ReadFile(dir + "/out"), ReadFile(dir + "/expected"));
         }},
        {"res get in.dll --type 6 --name 1 --lang 0x409 -o OUT",
         [](const std::string& dir) { EXPECT_EQ(ReadFile(dir + "/out").size(), 136u); }},
        {"res put in.dll --type BLOB --name NEW --lang 0 --data data.bin -o OUT",
         [](const std::string& dir) {
             EXPECT_EQ(Tervane(dir, "res get out --type BLOB --name NEW --lang 0").out, "new");
         }},
        {"res delete in.dll --type 6 --name 1 --lang 0x409 -o OUT",
         [](const std::string& dir) {
             EXPECT_EQ(Tervane(dir, "res get out --type 6 --name 1 --lang 0x409").status, 1);
             EXPECT_EQ(Tervane(dir, "res get out --type 6 --name 3 --lang 0x409").status, 0);
         }},
    };
    return commands;
}

enum class After { kAbsent, kUnchanged, kComplete };

TEST(OutputSafety, EveryCommandThatWritesAgainstEachTarget) {
    struct Case {
        const char* what;
        std::function<void(const std::string& dir)> prepare;
        const char* out;
        int status;
        std::string message; // the whole of standard error
        After after;
    };
    const Case cases[] = {
        {"a new file", [](const std::string&) {}, "out", 0, "", After::kComplete},
        {"an old file, its mode kept",
         [](const std::string& dir) {
             WriteFile(dir + "/out", kOld);
             ::chmod((dir + "/out").c_str(), 0604);
         },
         "out", 0, "", After::kComplete},
        {"the input itself", [](const std::string&) {}, "in.dll", 1,
         "in.dll: is the same file as the input in.dll; not written\n", After::kUnchanged},
        {"a hard link to the input",
         [](const std::string& dir) { ::link((dir + "/in.dll").c_str(), (dir + "/out").c_str()); },
         "out", 1, "out: is the same file as the input in.dll; not written\n", After::kUnchanged},
        {"a symbolic link to the input",
         [](const std::string& dir) { ::symlink("in.dll", (dir + "/out").c_str()); }, "out", 1,
         "out: is the same file as the input in.dll; not written\n", After::kUnchanged},
        {"a folder", [](const std::string& dir) { ::mkdir((dir + "/out").c_str(), 0755); }, "out",
         1, "out: exists and is not a regular file; not written\n", After::kUnchanged},
        {"a link to a device",
         [](const std::string& dir) { ::symlink("/dev/null", (dir + "/out").c_str()); }, "out", 1,
         "out: exists and is not a regular file; not written\n", After::kUnchanged},
        {"a link to nothing",
         [](const std::string& dir) { ::symlink("missing", (dir + "/out").c_str()); }, "out", 1,
         "out: exists and is not a regular file; not written\n", After::kUnchanged},
        {"an old file and a damaged input",
         [](const std::string& dir) {
             WriteFile(dir + "/in.dll", {'M', 'Z', 0, 0});
             WriteFile(dir + "/out", kOld);
         },
         "out", 1, "in.dll: in.dll is not a valid Win32 application.\n", After::kUnchanged},
        {"an old file and a FIFO for input",
         [](const std::string& dir) {
             ::unlink((dir + "/in.dll").c_str());
             ::mkfifo((dir + "/in.dll").c_str(), 0600);
             WriteFile(dir + "/out", kOld);
         },
         "out", 1, "in.dll: is a FIFO, not a regular file; not read\n", After::kUnchanged},
        {"a folder for input",
         [](const std::string& dir) {
             ::unlink((dir + "/in.dll").c_str());
             ::mkdir((dir + "/in.dll").c_str(), 0755);
         },
         "out", 1, "in.dll: is a directory, not a regular file; not read\n", After::kAbsent},
    };
    for (const Command& command : Commands()) {
        const std::string name = std::string(command.arguments).substr(0, 11);
        for (const Case& c : cases) {
            SCOPED_TRACE(std::string(command.arguments) + ", onto " + c.what);
            const std::string dir = Folder();
            // What a whole result looks like, from standard output.
            if (name.starts_with("extract"))
                RunCommand("cd '" + dir + "' && " + kTervane + " " + With(command.arguments, "-") +
                           " >expected");
            c.prepare(dir);
            const std::string input = Sha256(dir + "/in.dll");
            const std::string target = dir + "/" + c.out;
            const std::string old = Sha256(target);
            const mode_t mode = Exists(target) ? Mode(target) : 0;
            const std::string listing = Listing(dir);

            Outcome outcome = Tervane(dir, With(command.arguments, c.out));
            EXPECT_EQ(outcome.status, c.status) << outcome.err;
            const std::string prefix = "tervane " + name.substr(0, name.find(' ')) + ": ";
            // The first line is the failure; where it happened, when a reader
            // knew, follows on a second line that the failure-place tests check.
            EXPECT_EQ(outcome.err.substr(0, outcome.err.find('\n') + 1),
                      c.message.empty() ? "" : prefix + c.message);
            EXPECT_EQ(Sha256(dir + "/in.dll"), input);
            switch (c.after) {
            case After::kAbsent:
                EXPECT_FALSE(Exists(target));
                break;
            case After::kUnchanged:
                EXPECT_EQ(Sha256(target), old);
                EXPECT_EQ(Listing(dir), listing);
                break;
            case After::kComplete:
                command.complete(dir);
                EXPECT_EQ(Mode(target), mode ? mode : 0666 & ~Umask());
                break;
            }
        }
    }
}

// Without -o the change goes into FILE, whole or not at all, its mode kept.
TEST(OutputSafety, ResChangesFileInPlaceOnlyWhenWhole) {
    struct Case {
        const char* arguments;
        int status;
        std::string err;
        bool changed;
    };
    const Case cases[] = {
        {"put in.dll --type BLOB --name NEW --lang 0 --data data.bin", 0, "", true},
        {"delete in.dll --type 6 --name 3 --lang 0x409", 0, "", true},
        {"put in.dll --type BLOB --name NEW --lang 0 --data fifo", 1,
         "tervane res: fifo: is a FIFO, not a regular file; not read\n", false},
        {"put in.dll --type BLOB --name NEW --lang 0 --data /dev/zero", 1,
         "tervane res: /dev/zero: is a device, not a regular file; not read\n", false},
        {"delete in.dll --type 6 --name 9 --lang 0x409", 1,
         "tervane res: in.dll: The specified resource name cannot be found in the image file.\n",
         false},
        {"put in.dll --type BLOB --name NEW --lang 0 --data data.bin -o -", 1,
         "tervane res: -: a changed PE file is not written to standard output\n", false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.arguments);
        const std::string dir = Folder();
        ::mkfifo((dir + "/fifo").c_str(), 0600);
        ::chmod((dir + "/in.dll").c_str(), 0640);
        const std::string before = Sha256(dir + "/in.dll");
        const std::string listing = Listing(dir);
        Outcome outcome = Tervane(dir, std::string("res ") + c.arguments);
        EXPECT_EQ(outcome.status, c.status);
        EXPECT_EQ(outcome.err, c.err);
        EXPECT_EQ(Sha256(dir + "/in.dll") != before, c.changed);
        EXPECT_EQ(Mode(dir + "/in.dll"), 0640u);
        EXPECT_EQ(Listing(dir), listing);
    }
}

// Inputs that are no regular file, or too large to be what they claim, are
// refused by name before anything opens them: a FIFO would hang the reader.
TEST(OutputSafety, InputsRefusedBeforeReading) {
    const std::string dir = Folder();
    ::mkfifo((dir + "/fifo").c_str(), 0600);
    // Sparse: one byte past each limit costs no disk.
    RunCommand("cd '" + dir + "' && truncate -s 4294967296 huge.dll && truncate -s 2147483648 " +
               "huge.bin");
    const std::pair<std::string, std::string> cases[] = {
        {"list fifo", "tervane list: fifo: is a FIFO, not a regular file; not read\n"},
        {"extract /dev/zero", "tervane extract: /dev/zero: is a device, not a regular file; not "
                              "read\n"},
        {"res get . --type 6 --name 1 --lang 0", "tervane res: .: is a directory, not a regular "
                                                 "file; not read\n"},
        {"list huge.dll", "tervane list: huge.dll: is larger than the 4294967295 bytes that can be "
                          "read; not read\n"},
        {"extract huge.dll", "tervane extract: huge.dll: is larger than the 4294967295 bytes that "
                             "can be read; not read\n"},
        {"res put in.dll --type 1 --name 1 --lang 0 --data huge.bin",
         "tervane res: huge.bin: is larger than the 2147483647 bytes that can be read; not read\n"},
        {"verify fifo", "tervane verify: fifo: is a FIFO, not a regular file; not read\n"},
        {"stats /dev/zero",
         "tervane stats: /dev/zero: is a device, not a regular file; not read\n"},
        {"pseudo fifo -o p.xlf", "tervane pseudo: fifo: is a FIFO, not a regular file; not read\n"},
        {"merge fifo -o m.dll", "tervane merge: fifo: is a FIFO, not a regular file; not read\n"},
    };
    for (const auto& [arguments, err] : cases) {
        Outcome outcome = Tervane(dir, arguments);
        EXPECT_EQ(outcome.status, 1) << arguments;
        EXPECT_EQ(outcome.err, err) << arguments;
    }
}

// A conversion that reads nothing says so, and still succeeds.
TEST(OutputSafety, ConversionThatReadsNothingSaysSo) {
    const std::string dir = Folder();
    WriteFile(dir + "/in.dll", ReadFile(FixturePath("fwd_none", "x86")));
    Outcome outcome = Tervane(dir, "extract in.dll");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "tervane extract: in.dll: nothing to convert: no string table, menu, "
                           "dialog or version value holds a text\n");
    EXPECT_EQ(Tervane(dir, "extract --no-scan --events " + FixturePath("fwd_strings", "x86")).err,
              "");
}

// Standard output on a full disk: every command fails with 1 and says why.
TEST(OutputSafety, FullStandardOutput) {
    if (!Exists("/dev/full"))
        GTEST_SKIP() << "no /dev/full";
    const std::string dir = Folder();
    for (const char* arguments :
         {"list in.dll", "list --json in.dll", "tables", "tokens --kind string Hello",
          "extract --no-scan in.dll", "extract --no-scan --events in.dll -o -",
          "res get in.dll --type 6 --name 1 --lang 0x409", "--help", "--version"}) {
        Outcome outcome = Tervane(dir, std::string(arguments) + " >/dev/full");
        EXPECT_EQ(outcome.status, 1) << arguments;
        EXPECT_NE(outcome.err.find("standard output: No space left on device\n"), std::string::npos)
            << arguments << ": " << outcome.err;
    }
}

// A file system of a few kilobytes, filled: the write fails with 1 and the
// old target stays whole, with no temporary file left beside it.
TEST(OutputSafety, FullDiskLeavesTheOldTargetWhole) {
    const std::string dir = Folder();
    const std::string disk = dir + "/disk";
    ::mkdir(disk.c_str(), 0755);
    int status = -1;
    RunCommand("mount -t tmpfs -o size=16k tmpfs '" + disk + "' 2>/dev/null", &status);
    if (status != 0)
        GTEST_SKIP() << "no right to mount a small file system here";
    struct Unmount {
        std::string path;
        ~Unmount() { RunCommand("umount '" + path + "'"); }
    } unmount{disk};
    WriteFile(disk + "/out.xml", kOld);
    WriteFile(disk + "/out.bin", kOld);
    RunCommand("dd if=/dev/zero of='" + disk + "/filler' bs=1k 2>/dev/null");
    const std::string listing = Listing(disk);
    for (const char* arguments :
         {"extract --no-scan in.dll -o disk/out.xml",
          "extract --no-scan --events in.dll -o disk/out.xml",
          "res get in.dll --type 6 --name 1 --lang 0x409 -o disk/out.bin",
          "res put in.dll --type BLOB --name NEW --lang 0 --data data.bin -o disk/out.bin"}) {
        Outcome outcome = Tervane(dir, arguments);
        EXPECT_EQ(outcome.status, 1) << arguments;
        EXPECT_NE(outcome.err.find("No space left on device"), std::string::npos)
            << arguments << ": " << outcome.err;
        EXPECT_EQ(ReadFile(disk + "/out.xml"), kOld) << arguments;
        EXPECT_EQ(ReadFile(disk + "/out.bin"), kOld) << arguments;
        EXPECT_EQ(Listing(disk), listing) << arguments;
    }
}

} // namespace
} // namespace tervane::test
