#include "platform/win32/resources.h"

#include <cstdint>

#include <gtest/gtest.h>

#include "platform/win32/last_error.h"
#include "platform/win32/module_image.h"
#include "tests/platform/resource_walk.h"
#include "tests/support/fixtures.h"

namespace tervane {
namespace {

struct Module {
    HMODULE handle;
    explicit Module(const std::string& path)
        : handle(LoadLibraryExA(path.c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE)) {}
    ~Module() {
        if (handle)
            FreeLibrary(handle);
    }
};

// The resource's bytes as text, or "error N" with the last error.
std::string Lookup(HMODULE module, const ResName& type, const ResName& name, WORD language) {
    SetLastError(0);
    HRSRC found = FindResourceExA(module, type, name, language);
    HGLOBAL loaded = found ? LoadResource(module, found) : nullptr;
    const void* bytes = LockResource(loaded);
    if (!bytes)
        return "error " + std::to_string(GetLastError());
    EXPECT_EQ(GetLastError(), 0u);
    return std::string(static_cast<const char*>(bytes), SizeofResource(module, found));
}

TEST(Resources, EnumeratesInWin32Order) {
    // Named entries first, names by UTF-16 unit, then numbers ascending;
    // languages ascending within a name.
    const std::string expected =
        "MYTYPE/NAMED/1033|MYTYPE/7/1033|OTHER TYPE/3/1033|6/1/1031|6/1/1033|"
        "6/2/1033|10/ SPACED NAME /1033|10/A/0|10/A/7|10/A/1033|10/A-B/1033|"
        "10/AA/1033|10/AB/1031|10/AB/1033|10/A_B/1033|10/F/1031|10/F/1036|"
        "10/\xC3\x96/1033|10/\xC3\xB6/1033|10/1/1033|10/32767/1033|10/65535/1033|240/1/1033";
    for (const auto& path : test::FixtureImages("reader")) {
        Module module(path);
        ASSERT_TRUE(module.handle) << path;
        auto walk = test::WalkResources(module.handle);
        std::string seen;
        for (const std::string& entry : walk.seen)
            seen += (seen.empty() ? "" : "|") + entry;
        ASSERT_EQ(seen, expected) << path;
        EXPECT_EQ(walk.firstError, 0u) << path;
        ASSERT_EQ(walk.data.size(), walk.seen.size()) << path;
        // A name the resource compiler left in lower case is looked up in
        // upper case, as on Windows: "ö" reaches "Ö".
        EXPECT_EQ(walk.data[18], "O umlaut") << path;
        EXPECT_EQ(walk.data[0], "mytype named") << path;
    }
}

TEST(Resources, FindsAsWin32Does) {
    struct Case {
        ResName type;
        ResName name;
        WORD language;
        std::string expected;
    };
    const Case cases[] = {
        {RT_RCDATA, "ab", 0x409, "AB en"},
        {ResName::FromText("#10"), ResName::FromText("AB"), 0x407, "AB de"},
        {RT_RCDATA, " spaced NAME ", 0x409, "spaced"},
        {RT_RCDATA, "spaced name", 0x409, "error 1814"},
        {"mytype", "named", 0x409, "mytype named"},
        {"7", "MYTYPE", 0x409, "error 1813"}, // a name that looks like a number is a name
        // Exact, then primary with a neutral sublanguage, then neutral.
        {RT_RCDATA, "A", 0x0409, "A en"},
        {RT_RCDATA, "A", 0x0407, "A de neutral"},
        {RT_RCDATA, "A", 0x040C, "A neutral"},
        {RT_RCDATA, "AB", 0x0809, "error 1815"},
        // Neutral, or the user's default, goes on to English, then to the
        // first language stored.
        {RT_RCDATA, "AB", 0x0000, "AB en"},
        {RT_RCDATA, "F", 0x0000, "F de"},
        {RT_RCDATA, "F", 0x040C, "F fr"},
        {RT_RCDATA, "F", 0x0409, "error 1815"},
    };
    for (const auto& path : test::FixtureImages("reader")) {
        Module module(path);
        ASSERT_TRUE(module.handle);
        for (const Case& c : cases)
            EXPECT_EQ(Lookup(module.handle, c.type, c.name, c.language), c.expected)
                << path << " " << c.type.ToString() << "/" << c.name.ToString() << "/"
                << c.language;
        // FindResourceA asks for the neutral language.
        HRSRC found = FindResourceA(module.handle, "AB", RT_RCDATA);
        ASSERT_TRUE(found);
        EXPECT_EQ(found, FindResourceExA(module.handle, RT_RCDATA, "AB", 0x409));
    }
}

TEST(Resources, HandlesAreCheckedAgainstTheirModule) {
    Module module(test::FixturePath("reader", "x64"));
    ASSERT_TRUE(module.handle);
    // The first and the last resource of the directory, in its order.
    HRSRC first = FindResourceExA(module.handle, "MYTYPE", "NAMED", 1033);
    HRSRC last = FindResourceExA(module.handle, ResName(240), ResName(1), 1033);
    ASSERT_TRUE(first && last);
    EXPECT_EQ(first, FindResourceExA(module.handle, "MYTYPE", "NAMED", 1033));
    HGLOBAL loaded = LoadResource(module.handle, last);
    ASSERT_TRUE(loaded);
    EXPECT_EQ(LoadResource(module.handle, last), loaded); // loaded once
    HRSRC own = FindResourceA(TervaneModuleHandle(), ResName(1), RT_VERSION);
    ASSERT_TRUE(own);
    struct Case {
        const char* what;
        HRSRC handle;
        bool valid;
    };
    auto at = [](HRSRC handle, std::ptrdiff_t bytes) {
        return reinterpret_cast<HRSRC>(reinterpret_cast<std::uintptr_t>(handle) + bytes);
    };
    constexpr auto kSize = static_cast<std::ptrdiff_t>(sizeof(ResourceInfo));
    const Case cases[] = {
        {"first", first, true},
        {"last", last, true},
        {"null", nullptr, false},
        {"past the last", at(last, kSize), false},
        {"before the first", at(first, -kSize), false},
        {"inside the last", at(last, 1), false},
        {"another module's", own, false},
    };
    for (const Case& c : cases) {
        SetLastError(0);
        EXPECT_EQ(LoadResource(module.handle, c.handle) != nullptr, c.valid) << c.what;
        EXPECT_EQ(SizeofResource(module.handle, c.handle) != 0, c.valid) << c.what;
        EXPECT_EQ(GetLastError(), c.valid ? 0u : DWORD{ERROR_INVALID_HANDLE}) << c.what;
    }
}

TEST(Resources, LoadingFailsWithWin32Errors) {
    std::string dir = test::TempDir();
    test::WriteFile(dir + "/empty.dll", {});
    std::string good = test::FixturePath("reader", "x86");
    struct Case {
        std::string path;
        DWORD flags;
        DWORD error;
    };
    const Case cases[] = {
        {dir, LOAD_LIBRARY_AS_DATAFILE, ERROR_ACCESS_DENIED},
        {dir + "/empty.dll", LOAD_LIBRARY_AS_DATAFILE, ERROR_FILE_INVALID},
        {good, DONT_RESOLVE_DLL_REFERENCES, ERROR_INVALID_PARAMETER},
    };
    for (const Case& c : cases) {
        SetLastError(0);
        EXPECT_EQ(LoadLibraryExA(c.path.c_str(), nullptr, c.flags), nullptr) << c.path;
        EXPECT_EQ(GetLastError(), c.error) << c.path;
    }
    // The flags the conversion passes; success leaves the last error alone.
    SetLastError(0);
    HMODULE module = LoadLibraryExW(u"/nonexistent", nullptr, 3);
    EXPECT_EQ(module, nullptr);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_FILE_NOT_FOUND});
    SetLastError(0);
    std::u16string wide(good.begin(), good.end());
    module = LoadLibraryExW(wide.c_str(), nullptr, 3);
    ASSERT_NE(module, nullptr);
    EXPECT_EQ(GetLastError(), 0u);
    EXPECT_TRUE(FreeLibrary(module));
}

TEST(Resources, ModuleServesItsOwnResources) {
    HMODULE self = TervaneModuleHandle();
    char text[64];
    EXPECT_EQ(LoadStringA(self, 100, text, sizeof text), 13);
    EXPECT_STREQ(text, "TervaneFilter");
    EXPECT_EQ(LoadStringA(self, 100, text, 8), 7); // cut to fit, terminated
    EXPECT_STREQ(text, "Tervane");
    EXPECT_EQ(LoadStringA(self, 101, text, sizeof text), 0);
    EXPECT_STREQ(text, "");
    EXPECT_EQ(LoadStringA(self, 5000, text, sizeof text), 0);

    EXPECT_EQ(test::WalkResources(self).firstError, 0u);
}

TEST(Resources, VersionResourceMatchesTheResourceCompilers) {
    // The same values compiled by windres from a script.
    Module compiled(test::FixturePath("module_version", "x64"));
    ASSERT_TRUE(compiled.handle);
    std::string expected = Lookup(compiled.handle, RT_VERSION, 1, 0x409);
    std::string ours = Lookup(TervaneModuleHandle(), RT_VERSION, 1, 0x409);
    ASSERT_GT(expected.size(), 100u);
    EXPECT_EQ(ours.size(), expected.size());
    EXPECT_TRUE(ours == expected);
}

} // namespace
} // namespace tervane
