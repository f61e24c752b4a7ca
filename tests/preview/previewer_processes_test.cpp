// The previewer processes on a registry store and a HOME of the test's own:
// what the record holds, which previewers a preview closes, and that nothing
// but our own previewer is ever ended.
#include <chrono>
#include <cstdlib>
#include <dirent.h>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <thread>
#include <unistd.h>

#include "platform/process/processes.h"
#include "platform/registry/registry.h"
#include "preview/previewer_processes.h"
#include "tests/support/fixtures.h"

namespace tervane::test {
namespace {

bool Running(DWORD id) {
    return id != kNoPreviewer && IdentityOf(static_cast<pid_t>(id)).has_value();
}

// Ended processes go to init, which reaps them when it will.
bool Gone(DWORD id) {
    for (int i = 0; i < 500 && Running(id); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    return !Running(id);
}

struct Record {
    DWORD id = 0;
    std::string file;
};

Record ReadRecord(bool source) {
    Record record;
    HKEY key = nullptr;
    if (RegOpenKeyExA(HKEY_CURRENT_USER, kPreviewRecordKey, 0, KEY_QUERY_VALUE, &key) != 0)
        return {kNoPreviewer, "<no key>"};
    DWORD size = sizeof record.id;
    RegQueryValueExA(key, source ? "SourceProcessId" : "DestProcessId", nullptr, nullptr,
                     reinterpret_cast<BYTE*>(&record.id), &size);
    char buffer[1024] = {};
    size = sizeof buffer;
    RegQueryValueExA(key, source ? "SourceFilePath" : "DestFilePath", nullptr, nullptr,
                     reinterpret_cast<BYTE*>(buffer), &size);
    record.file = buffer;
    RegCloseKey(key);
    return record;
}

std::string CommandLineOf(DWORD id) {
    std::ifstream in("/proc/" + std::to_string(id) + "/cmdline");
    std::string all((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    for (char& c : all)
        if (c == '\0')
            c = ' ';
    if (!all.empty())
        all.pop_back();
    return all;
}

// Children of this process left as zombies.
int Zombies() {
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
        std::ifstream stat(entry.path() / "stat");
        std::string line;
        if (!std::getline(stat, line) || line.rfind(')') == std::string::npos)
            continue;
        std::istringstream fields(line.substr(line.rfind(')') + 2));
        char state = 0;
        long parent = 0;
        fields >> state >> parent;
        count += parent == ::getpid() && state == 'Z';
    }
    return count;
}

class PreviewerProcesses : public ::testing::Test {
protected:
    void SetUp() override {
        dir_ = TempDir();
        for (const char* name :
             {"HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME", "TERVANE_REGISTRY_DIR"}) {
            const char* old = std::getenv(name);
            saved_.emplace_back(name, old ? std::optional<std::string>(old) : std::nullopt);
        }
        ::setenv("HOME", dir_.c_str(), 1);
        ::setenv("XDG_CONFIG_HOME", (dir_ + "/config").c_str(), 1);
        ::setenv("XDG_CACHE_HOME", (dir_ + "/cache").c_str(), 1);
        ::unsetenv("TERVANE_REGISTRY_DIR");
        Register(std::string(TERVANE_BINARY_DIR) + "/libTervaneFilter.so");
    }
    void TearDown() override {
        for (DWORD id : started_)
            if (auto process = ProcessHandle::Open(static_cast<pid_t>(id)))
                process->Terminate();
        for (const auto& [name, value] : saved_)
            value ? ::setenv(name.c_str(), value->c_str(), 1) : ::unsetenv(name.c_str());
    }

    static void Register(const std::string& module) {
        HKEY key = nullptr;
        ASSERT_EQ(RegCreateKeyExA(HKEY_CLASSES_ROOT, kPreviewWriterServerKey, 0, nullptr, 0,
                                  KEY_ALL_ACCESS, nullptr, &key, nullptr),
                  0);
        RegSetValueExA(key, nullptr, 0, REG_SZ, reinterpret_cast<const BYTE*>(module.c_str()),
                       static_cast<DWORD>(module.size() + 1));
        RegCloseKey(key);
    }

    // A file of its own for each preview, as a host gives it.
    std::string PreviewFile(const std::string& name) {
        const std::string path = dir_ + "/" + name;
        std::filesystem::copy_file(FixturePath("preview_dialogs", "x64"), path);
        return path;
    }

    // One preview of dialog 100 on a side, the record read behind it.
    Record Preview(const std::string& file, bool source, bool dual) {
        CPreviewerProcesses processes;
        processes.path = std::u16string(file.begin(), file.end());
        processes.language = 0x409;
        processes.documentNumber = source ? 0x409 : 0x407;
        processes.dual = dual ? 1 : 0;
        processes.LaunchPreviewer(processes.path, 5, "100");
        const Record record = ReadRecord(source);
        if (record.id != kNoPreviewer)
            started_.push_back(record.id);
        return record;
    }

    std::string dir_;
    std::vector<std::pair<std::string, std::optional<std::string>>> saved_;
    std::vector<DWORD> started_;
};

TEST_F(PreviewerProcesses, FirstPreviewMakesTheRecordAndStartsThePreviewer) {
    CPreviewerProcesses processes;
    EXPECT_EQ(processes.ReadPreviewerRecord(1), kNoPreviewer);
    // The key made with its four values, none of them naming a previewer.
    for (bool source : {true, false}) {
        const Record empty = ReadRecord(source);
        EXPECT_EQ(empty.id, kNoPreviewer);
        EXPECT_EQ(empty.file, "");
    }
    const std::string file = PreviewFile("my app.dll");
    const Record record = Preview(file, true, false);
    ASSERT_TRUE(Running(record.id));
    EXPECT_EQ(record.file, file);
    EXPECT_EQ(CommandLineOf(record.id),
              "TervanePreviewer ?fp " + file + " ?rd dialog ?rid 100 ?s ?notdual");
    EXPECT_EQ(IdentityOf(static_cast<pid_t>(record.id))->executable,
              std::string(TERVANE_BINARY_DIR) + "/" + kPreviewerProgram);
    EXPECT_EQ(Zombies(), 0);
}

TEST_F(PreviewerProcesses, TwoPreviewsInARowLeaveOne) {
    for (bool dual : {false, true}) {
        SCOPED_TRACE(dual ? "dual" : "notdual");
        const std::string first = PreviewFile(dual ? "a1.dll" : "a0.dll");
        const std::string second = PreviewFile(dual ? "b1.dll" : "b0.dll");
        const Record one = Preview(first, false, dual);
        ASSERT_TRUE(Running(one.id));
        const Record two = Preview(second, false, dual);
        EXPECT_TRUE(Gone(one.id));
        EXPECT_FALSE(std::filesystem::exists(first));
        EXPECT_TRUE(Running(two.id));
        EXPECT_EQ(two.file, second);
        EXPECT_TRUE(std::filesystem::exists(second));
    }
    EXPECT_EQ(Zombies(), 0);
}

TEST_F(PreviewerProcesses, DualLeavesTheOtherSidesPreviewer) {
    const std::string sourceFile = PreviewFile("s.dll"), destFile = PreviewFile("d.dll");
    const Record source = Preview(sourceFile, true, true);
    const Record dest = Preview(destFile, false, true);
    ASSERT_TRUE(Running(source.id));
    ASSERT_TRUE(Running(dest.id));
    EXPECT_EQ(ReadRecord(true).file, sourceFile);
    // Not dual: both sides close, and only the new one runs.
    const Record last = Preview(PreviewFile("n.dll"), true, false);
    EXPECT_TRUE(Gone(source.id));
    EXPECT_TRUE(Gone(dest.id));
    EXPECT_FALSE(std::filesystem::exists(sourceFile));
    EXPECT_FALSE(std::filesystem::exists(destFile));
    EXPECT_TRUE(Running(last.id));
    EXPECT_EQ(ReadRecord(false).id, kNoPreviewer);
}

TEST_F(PreviewerProcesses, AStaleRecordNeverEndsAnotherProcess) {
    // Processes that the record names without their being the previewer of
    // the record: another program, and a previewer that started at another
    // time than the record says.
    const std::string previewer = std::string(TERVANE_BINARY_DIR) + "/" + kPreviewerProgram;
    const std::string image = FixturePath("preview_dialogs", "x64");
    struct Case {
        const char* name;
        std::vector<std::string> command;
        unsigned long long startShift;
    };
    const Case cases[] = {
        {"sleep", {"/bin/sleep", "sleep", "60"}, 0},
        {"other previewer",
         {previewer, "TervanePreviewer", "?fp", image, "?rd", "dialog", "?rid", "100"},
         1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const std::optional<pid_t> other = StartDetached(
            c.command[0], std::vector<std::string>(c.command.begin() + 1, c.command.end()));
        ASSERT_TRUE(other);
        started_.push_back(static_cast<DWORD>(*other));
        const std::string stale = PreviewFile(std::string("stale-") + c.name + ".dll");
        CPreviewerProcesses writer;
        writer.path = std::u16string(stale.begin(), stale.end());
        writer.ReadPreviewerRecord(1); // makes the key
        writer.WritePreviewerRecord(1, static_cast<DWORD>(*other));
        if (c.startShift != 0) {
            HKEY key = nullptr;
            RegOpenKeyExA(HKEY_CURRENT_USER, kPreviewRecordKey, 0, KEY_ALL_ACCESS, &key);
            const unsigned long long wrong = IdentityOf(*other)->startTime + c.startShift;
            RegSetValueExA(key, "SourceProcessStart", 0, REG_QWORD,
                           reinterpret_cast<const BYTE*>(&wrong), sizeof wrong);
            RegCloseKey(key);
        }
        const Record fresh =
            Preview(PreviewFile(std::string("fresh-") + c.name + ".dll"), true, false);
        EXPECT_TRUE(Running(static_cast<DWORD>(*other)));
        EXPECT_TRUE(Running(fresh.id));
        // The file goes all the same, as that of a previewer closed by hand.
        EXPECT_FALSE(std::filesystem::exists(stale));
    }
}

TEST_F(PreviewerProcesses, APreviewerAlreadyGoneIsNoError) {
    const std::string file = PreviewFile("gone.dll");
    const Record one = Preview(file, true, false);
    ASSERT_TRUE(Running(one.id));
    ProcessHandle::Open(static_cast<pid_t>(one.id))->Terminate();
    ASSERT_TRUE(Gone(one.id));
    const Record two = Preview(PreviewFile("next.dll"), true, false);
    EXPECT_TRUE(Running(two.id));
    EXPECT_FALSE(std::filesystem::exists(file));
}

TEST_F(PreviewerProcesses, WithoutTheRegisteredModuleNothingStarts) {
    const Record one = Preview(PreviewFile("one.dll"), true, false);
    ASSERT_TRUE(Running(one.id));
    struct Case {
        const char* module;
    };
    // A module whose folder has no previewer, and a value without a folder.
    for (const Case& c : {Case{"/nonexistent/libTervaneFilter.so"}, Case{"libTervaneFilter.so"}}) {
        SCOPED_TRACE(c.module);
        Register(c.module);
        const Record none =
            Preview(PreviewFile(std::string("none-") + (c.module[0] == '/' ? "a" : "b") + ".dll"),
                    true, false);
        EXPECT_EQ(none.id, kNoPreviewer);
        EXPECT_EQ(none.file, "");
    }
    EXPECT_TRUE(Gone(one.id));
}

TEST(PreviewerCommandLine, AsTheFilterWritesIt) {
    struct Case {
        DWORD kind;
        const char* side;
        bool dual;
        const char* line;
    };
    const Case cases[] = {
        {5, "s", true, "TervanePreviewer ?fp /t/my app.dll ?rd dialog ?rid 7 ?s ?dual"},
        {4, "d", false, "TervanePreviewer ?fp /t/my app.dll ?rd menu ?rid 7 ?d ?notdual"},
        {16, "d", false, "TervanePreviewer ?fp /t/my app.dll ?rd version ?rid 7 ?d ?notdual"},
        {6, "s", false, "TervanePreviewer ?fp /t/my app.dll ?rd  ?rid 7 ?s ?notdual"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(PreviewerCommandLine("/t/my app.dll", c.kind, "7", c.side, c.dual), c.line);
}

} // namespace
} // namespace tervane::test
