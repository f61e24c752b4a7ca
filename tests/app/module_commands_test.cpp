// The commands make their components only through the module that the
// registry store names, loaded as a framework loads it; and the program keeps
// the store pointed at the module built beside it.
#include <gtest/gtest.h>

#include <cstdlib>
#include <dlfcn.h>
#include <filesystem>
#include <string>

#include "platform/com/hresult.h"
#include "tests/support/fixtures.h"

namespace tervane::test {
namespace {

namespace fs = std::filesystem;

const std::string kBuild = TERVANE_BINARY_DIR;
const std::string kModule = fs::canonical(kBuild + "/libtervanefilter.so").string();

struct Outcome {
    std::string output; // standard error, with the loader's notes
    int status = -1;
};

// program in dir, with a registry store of store's own; the loader names each
// shared object it opens and who loaded it.
Outcome Tervane(const std::string& program, const std::string& dir, const std::string& store,
                const std::string& arguments) {
    Outcome run;
    RunCommand("cd '" + dir + "' && TERVANE_REGISTRY_DIR='" + store + "' LD_DEBUG=files '" +
                   program + "' " + arguments + " >/dev/null 2>'" + dir + "/err'",
               &run.status);
    const auto err = ReadFile(dir + "/err");
    run.output.assign(err.begin(), err.end());
    return run;
}

bool Loaded(const Outcome& run, const std::string& module) {
    return run.output.find("file=" + module + " [0];  dynamically loaded by") != std::string::npos;
}

// What DllRegisterServer of module writes into store.
void RegisterModule(const std::string& module, const std::string& store) {
    ::setenv("TERVANE_REGISTRY_DIR", store.c_str(), 1);
    void* handle = ::dlopen(module.c_str(), RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(handle, nullptr) << ::dlerror();
    auto entry = reinterpret_cast<HRESULT (*)()>(::dlsym(handle, "DllRegisterServer"));
    ASSERT_NE(entry, nullptr);
    EXPECT_EQ(entry(), S_OK);
    ::dlclose(handle);
    ::unsetenv("TERVANE_REGISTRY_DIR");
}

// A work folder with the fixture, its events and its bilingual document.
std::string WorkFolder() {
    const std::string dir = TempDir();
    fs::copy_file(FixturePath("bwd_menus", "x64"), dir + "/menus.dll");
    const std::string store = TempDir();
    const std::string tervane = kBuild + "/tervane";
    for (const char* arguments : {"extract --no-scan --events menus.dll -o menus.jsonl",
                                  "extract --no-scan menus.dll -o menus.xlf --target-lang de-DE"})
        EXPECT_EQ(Tervane(tervane, dir, store, arguments).status, 0) << arguments;
    return dir;
}

struct CommandRow {
    const char* what;
    const char* arguments;
    int status;
};

// Each command with the components it needs and no others.
const CommandRow kCommands[] = {
    {"extract: the parser", "extract --no-scan menus.dll", 0},
    {"extract --filter: the parser and the filter stage", "extract --no-scan --filter menus.dll",
     0},
    {"scan: the scanner", "scan menus.dll", 0},
    {"merge: the writer",
     "merge --no-scan --events menus.jsonl --source menus.dll --lang de-DE -o out.dll", 0},
    {"verify: the plug-in", "verify menus.xlf", 0},
    // Refused by the preview writer itself, before any previewer starts.
    {"preview: the preview writer",
     "preview --events menus.jsonl --source menus.dll --lang de-DE --cursor 1 --keep p.dll", 1},
};

// A program without a module beside it finds its components only where the
// store says: nowhere at first, then in the module that register wrote there.
TEST(ModuleCommands, ComponentsComeOnlyFromTheRegisteredModule) {
    const std::string dir = WorkFolder();
    const std::string alone = TempDir() + "/tervane";
    fs::copy_file(kBuild + "/tervane", alone);
    const std::string store = TempDir();

    for (const CommandRow& row : kCommands) {
        SCOPED_TRACE(row.what);
        const Outcome run = Tervane(alone, dir, store, row.arguments);
        EXPECT_NE(run.status, 0) << run.output;
        EXPECT_FALSE(Loaded(run, kModule));
    }
    ASSERT_EQ(Tervane(kBuild + "/tervane", dir, store, "register").status, 0);
    for (const CommandRow& row : kCommands) {
        SCOPED_TRACE(row.what);
        const Outcome run = Tervane(alone, dir, store, row.arguments);
        EXPECT_EQ(run.status, row.status) << run.output;
        EXPECT_TRUE(Loaded(run, kModule)) << run.output;
    }
}

// From a fresh store, or one that names another build's module, every
// command ends up with the module beside the program, with no step by hand.
TEST(ModuleCommands, TheStoreIsPointedAtTheModuleBesideTheProgram) {
    const std::string dir = WorkFolder();
    const std::string other = TempDir() + "/libtervanefilter.so";
    fs::copy_file(kModule, other);
    const std::string tervane = kBuild + "/tervane";
    for (const CommandRow& row : kCommands) {
        SCOPED_TRACE(row.what);
        const std::string fresh = TempDir();
        Outcome run = Tervane(tervane, dir, fresh, row.arguments);
        EXPECT_EQ(run.status, row.status) << run.output;
        EXPECT_TRUE(Loaded(run, kModule));

        // Registered by the other module, which loads as well as ours.
        const std::string stale = TempDir();
        RegisterModule(other, stale);
        run = Tervane(tervane, dir, stale, row.arguments);
        EXPECT_EQ(run.status, row.status) << run.output;
        EXPECT_TRUE(Loaded(run, kModule));
        EXPECT_FALSE(Loaded(run, other));
    }
}

} // namespace
} // namespace tervane::test
