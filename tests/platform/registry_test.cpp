// The registry store: Win32's answers for keys and values, names without
// case, and what one process writes is what the next one reads.
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/registry/registry.h"
#include "tests/support/fixtures.h"

namespace tervane::test {
namespace {

class RegistryStore : public ::testing::Test {
protected:
    void SetUp() override { ::setenv("TERVANE_REGISTRY_DIR", TempDir().c_str(), 1); }
    void TearDown() override { ::unsetenv("TERVANE_REGISTRY_DIR"); }
};

TEST_F(RegistryStore, KeysAndValuesAsWin32Answers) {
    HKEY key = nullptr;
    EXPECT_EQ(RegOpenKeyExA(HKEY_CURRENT_USER, "Software\\Tervane", 0, KEY_ALL_ACCESS, &key),
              LONG(ERROR_FILE_NOT_FOUND));
    DWORD disposition = 0;
    ASSERT_EQ(RegCreateKeyExA(HKEY_CURRENT_USER, "Software\\Tervane", 0, "test", 0, KEY_ALL_ACCESS,
                              nullptr, &key, &disposition),
              0);
    EXPECT_EQ(disposition, REG_CREATED_NEW_KEY);
    const DWORD number = 0xFFFFFFFF;
    ASSERT_EQ(RegSetValueExA(key, "ProcessId", 0, REG_DWORD, reinterpret_cast<const BYTE*>(&number),
                             sizeof number),
              0);
    ASSERT_EQ(RegSetValueExA(key, "Path", 0, REG_SZ, reinterpret_cast<const BYTE*>("a b\tc"), 6),
              0);
    RegCloseKey(key);
    EXPECT_EQ(RegCloseKey(key), LONG(ERROR_INVALID_HANDLE));

    // Another open, the names in other case; the parent was made on the way.
    HKEY parent = nullptr;
    EXPECT_EQ(RegOpenKeyExA(HKEY_CURRENT_USER, "SOFTWARE", 0, KEY_QUERY_VALUE, &parent), 0);
    RegCloseKey(parent);
    ASSERT_EQ(RegOpenKeyExA(HKEY_CURRENT_USER, "software\\TERVANE", 0, KEY_QUERY_VALUE, &key), 0);
    struct Case {
        const char* name;
        DWORD bufferSize;
        LONG result;
        DWORD type, size;
        const char* bytes;
    };
    const Case cases[] = {
        {"processid", 4, 0, REG_DWORD, 4, "\xff\xff\xff\xff"},
        {"PATH", 32000, 0, REG_SZ, 6, "a b\tc"},
        {"Path", 3, ERROR_MORE_DATA, REG_SZ, 6, nullptr}, // size tells what is needed
        {"Path", 6, 0, REG_SZ, 6, "a b\tc"},              // exactly enough
        {"Missing", 8, ERROR_FILE_NOT_FOUND, 0, 8, nullptr},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.name) + " " + std::to_string(c.bufferSize));
        BYTE buffer[32000] = {};
        DWORD type = 0, size = c.bufferSize;
        EXPECT_EQ(RegQueryValueExA(key, c.name, nullptr, &type, buffer, &size), c.result);
        EXPECT_EQ(type, c.type);
        EXPECT_EQ(size, c.size);
        if (c.bytes) {
            EXPECT_EQ(std::memcmp(buffer, c.bytes, c.size), 0);
        }
    }
    RegCloseKey(key);
    // The classes are a root of their own.
    EXPECT_EQ(RegOpenKeyExA(HKEY_CLASSES_ROOT, "Software\\Tervane", 0, KEY_QUERY_VALUE, &key),
              LONG(ERROR_FILE_NOT_FOUND));
    // A second create opens.
    ASSERT_EQ(RegCreateKeyExA(HKEY_CURRENT_USER, "Software\\Tervane", 0, nullptr, 0, KEY_ALL_ACCESS,
                              nullptr, &key, &disposition),
              0);
    EXPECT_EQ(disposition, REG_OPENED_EXISTING_KEY);
    RegCloseKey(key);
}

// A value another process writes is read here, although this process has
// read the store before.
TEST_F(RegistryStore, AnotherProcesssWriteIsSeen) {
    HKEY key = nullptr;
    ASSERT_EQ(RegCreateKeyExA(HKEY_CURRENT_USER, "Software\\Tervane", 0, nullptr, 0, KEY_ALL_ACCESS,
                              nullptr, &key, nullptr),
              0);
    auto set = [&](DWORD number) {
        return RegSetValueExA(key, "ProcessId", 0, REG_DWORD,
                              reinterpret_cast<const BYTE*>(&number), sizeof number);
    };
    auto get = [&] {
        DWORD number = 0, size = sizeof number;
        RegQueryValueExA(key, "ProcessId", nullptr, nullptr, reinterpret_cast<BYTE*>(&number),
                         &size);
        return number;
    };
    ASSERT_EQ(set(1), 0);
    EXPECT_EQ(get(), 1u);
    for (DWORD value : {2u, 3u}) {
        const pid_t child = ::fork();
        ASSERT_GE(child, 0);
        if (child == 0)
            ::_exit(set(value) == 0 ? 0 : 1);
        int status = -1;
        ::waitpid(child, &status, 0);
        ASSERT_EQ(status, 0);
        EXPECT_EQ(get(), value);
    }
    RegCloseKey(key);
}

} // namespace
} // namespace tervane::test
