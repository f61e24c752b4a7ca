// DllRegisterServer and DllUnregisterServer against the registry store,
// compared as a whole tree with the classes' registration.
#include <climits>
#include <map>
#include <string>
#include <vector>

#include "platform/com/registrar.h"
#include "platform/registry/registry.h"
#include "platform/win32/resources.h"
#include "tests/server/server_fixture.h"

namespace tervane::test {
namespace {

// Key path -> value name -> text, all in lower case as the store keeps names;
// a key without values stands with an empty map.
using Tree = std::map<std::string, std::map<std::string, std::string>>;

std::string Lower(std::string text) {
    for (char& c : text)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return text;
}

void Dump(HKEY key, const std::string& path, Tree& tree) {
    if (!path.empty())
        tree[path];
    char name[512];
    BYTE data[4096];
    for (DWORD i = 0;; ++i) {
        DWORD nameSize = sizeof name, dataSize = sizeof data, type = 0;
        if (RegEnumValueA(key, i, name, &nameSize, nullptr, &type, data, &dataSize) !=
            ERROR_SUCCESS)
            break;
        std::string text(reinterpret_cast<const char*>(data), dataSize);
        if (!text.empty() && text.back() == '\0')
            text.pop_back();
        tree[path][name] = text;
    }
    for (DWORD i = 0;; ++i) {
        DWORD nameSize = sizeof name;
        if (RegEnumKeyExA(key, i, name, &nameSize, nullptr, nullptr, nullptr, nullptr) !=
            ERROR_SUCCESS)
            break;
        HKEY sub = nullptr;
        ASSERT_EQ(RegOpenKeyExA(key, name, 0, KEY_QUERY_VALUE, &sub), ERROR_SUCCESS);
        Dump(sub, path.empty() ? name : path + "\\" + name, tree);
        RegCloseKey(sub);
    }
}

Tree ClassesRoot() {
    Tree tree;
    Dump(HKEY_CLASSES_ROOT, "", tree);
    return tree;
}

const std::string kAppId = "{90B2652A-BC45-4F38-A613-9336EA7D798E}";
const std::string kLibrary = "{CBFF1EDF-61B7-408F-8C5C-E0EA82826D03}";

struct ClassRow {
    std::string name, clsid, progId;
    bool apartment;
    bool appIdValue;
};
const ClassRow kServed[] = {
    {"TervaneParser", "{F3CC2DB3-29A7-4CC3-82E7-8EAAD9875B2F}", "Zelkor.TervaneParser", true,
     false},
    {"TervaneWriter", "{758B7A60-23F8-4E7D-9B8E-4E2D4DFA75C3}", "Zelkor.TervaneWriter", false,
     true},
    {"TervanePreviewWriter", "{A9F23F59-2DDA-4A05-9BA9-0D6BE568606B}",
     "Zelkor.TervanePreviewWriter", true, false},
    {"TervaneScanner", "{85F9F636-07B6-4FCC-A7F1-2560135377F9}", "Zelkor.TervaneScanner", true,
     false},
    {"TervaneInteractiveParser", "{C10218AC-3535-4815-9059-06F6F1CCBEFE}",
     "Zelkor.TervaneInteractiveParser", true, false},
};

void AddClass(Tree& tree, const ClassRow& row, const std::string& module) {
    const std::string description = row.name + " Class";
    const std::string versioned = row.progId + ".1";
    const std::string progId = Lower(row.progId);
    tree[Lower(versioned)] = {{"", description}};
    tree[Lower(versioned) + "\\clsid"] = {{"", row.clsid}};
    tree[progId] = {{"", description}};
    tree[progId + "\\clsid"] = {{"", row.clsid}};
    tree[progId + "\\curver"] = {{"", versioned}};
    const std::string key = "clsid\\" + Lower(row.clsid);
    tree[key] = {{"", description}};
    if (row.appIdValue)
        tree[key]["appid"] = kAppId;
    tree[key + "\\progid"] = {{"", versioned}};
    tree[key + "\\versionindependentprogid"] = {{"", row.progId}};
    tree[key + "\\programmable"];
    tree[key + "\\inprocserver32"] = {{"", module}};
    if (row.apartment)
        tree[key + "\\inprocserver32"]["threadingmodel"] = "Apartment";
    tree[key + "\\typelib"] = {{"", kLibrary}};
}

// The plug-in is found by the host through its category.
void AddVerifier(Tree& tree, const std::string& module) {
    AddClass(tree,
             {"TervaneVerifier", "{D6054293-4139-462C-8654-4EE69B00234B}",
              "TervaneFilter.TervaneVerifier", true, false},
             module);
    const std::string key = "clsid\\{d6054293-4139-462c-8654-4ee69b00234b}";
    tree[key]["description"] = "Zelkor Tervane Verifier";
    tree[key + "\\implemented categories"] = {{"", module}};
    tree[key + "\\implemented categories\\{8ac3b6b0-b698-11d5-8911-00b0d0777f8b}"];
}

Tree Registered(const std::string& module) {
    Tree tree = {
        {"appid", {}},
        {"appid\\" + Lower(kAppId), {{"", "Zelkor Tervane Filter 1.0.0.0"}}},
        {"appid\\tervanefilter.dll",
         {{"appid", kAppId}, {"release", "IB19.1"}, {"date", "10.03.2005"}}},
        {"clsid", {}},
        {"typelib", {}},
    };
    const std::string library = "typelib\\" + Lower(kLibrary);
    tree[library];
    tree[library + "\\1.0"] = {{"", "TervaneFilter 1.0 Type Library"}};
    tree[library + "\\1.0\\0"];
    tree[library + "\\1.0\\0\\win32"] = {{"", module}};
    tree[library + "\\1.0\\flags"] = {{"", "0"}};
    tree[library + "\\1.0\\helpdir"] = {{"", module.substr(0, module.rfind('/'))}};
    for (const ClassRow& row : kServed)
        AddClass(tree, row, module);
    AddVerifier(tree, module);
    return tree;
}

std::string ModulePath() {
    char resolved[PATH_MAX];
    return ::realpath(TERVANE_MODULE_PATH, resolved);
}

void SetText(const std::string& path, const char* name, const std::string& text) {
    HKEY key = nullptr;
    ASSERT_EQ(RegCreateKeyExA(HKEY_CLASSES_ROOT, path.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS,
                              nullptr, &key, nullptr),
              ERROR_SUCCESS);
    RegSetValueExA(key, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()),
                   static_cast<DWORD>(text.size() + 1));
    RegCloseKey(key);
}

using Registration = ServerTest;

TEST_F(Registration, RegisterWritesExactlyTheScriptsAndUnregisterKeepsOnlyTheRoots) {
    ASSERT_EQ(Call("DllRegisterServer"), S_OK);
    EXPECT_EQ(ClassesRoot(), Registered(ModulePath()));
    // Twice is the same as once.
    ASSERT_EQ(Call("DllRegisterServer"), S_OK);
    EXPECT_EQ(ClassesRoot(), Registered(ModulePath()));
    ASSERT_EQ(Call("DllUnregisterServer"), S_OK);
    EXPECT_EQ(ClassesRoot(), (Tree{{"appid", {}}, {"clsid", {}}, {"typelib", {}}}));
}

// What others put into the store around the module's keys.
TEST_F(Registration, ForceRemovedKeysAreRewrittenAndOthersKeysSurvive) {
    struct Case {
        const char* what;
        std::string path;
        bool afterRegister;   // still there after registration
        bool afterUnregister; // still there after removal
    };
    const std::string parserKey = "clsid\\{f3cc2db3-29a7-4cc3-82e7-8eaad9875b2f}";
    const Case cases[] = {
        {"a stale key below a force-removed class key", parserKey + "\\stale", false, false},
        {"another class below CLSID", "clsid\\{00000000-0000-0000-0000-000000000001}", true, true},
        {"another application below AppID", "appid\\other.dll", true, true},
        {"a foreign key below a ProgID key", "zelkor.tervaneparser\\foreign", true, true},
    };
    for (const Case& c : cases)
        SetText(c.path, "mark", c.what);
    ASSERT_EQ(Call("DllRegisterServer"), S_OK);
    Tree registered = ClassesRoot();
    ASSERT_EQ(Call("DllUnregisterServer"), S_OK);
    Tree removed = ClassesRoot();
    for (const Case& c : cases) {
        EXPECT_EQ(registered.count(c.path) != 0, c.afterRegister) << c.what;
        EXPECT_EQ(removed.count(c.path) != 0, c.afterUnregister) << c.what;
    }
    // The ProgID key that holds a foreign key stays, its own subkeys go.
    EXPECT_EQ(removed.count("zelkor.tervaneparser\\clsid"), 0u);
    EXPECT_EQ(removed.count(parserKey), 0u);
}

// Script 107 alone, with a module path of its own.
TEST(RegistrationScripts, VerifierScriptRegistersItsCategory) {
    ::setenv("TERVANE_REGISTRY_DIR", TempDir().c_str(), 1);
    HMODULE module = TervaneModuleHandle();
    HRSRC found = FindResourceA(module, ResName(107), ResName("REGISTRY"));
    ASSERT_NE(found, nullptr);
    const std::string script(static_cast<const char*>(LockResource(LoadResource(module, found))),
                             SizeofResource(module, found));
    const Replacements replacements = {{"MODULE", "/m/lib.so"}, {"APPID", kAppId}};
    ASSERT_EQ(RunRegistrationScript(script, replacements, true), S_OK);

    Tree expected = {{"clsid", {}}};
    AddVerifier(expected, "/m/lib.so");
    EXPECT_EQ(ClassesRoot(), expected);

    ASSERT_EQ(RunRegistrationScript(script, replacements, false), S_OK);
    EXPECT_EQ(ClassesRoot(), (Tree{{"clsid", {}}}));
    ::unsetenv("TERVANE_REGISTRY_DIR");
}

TEST(RegistrationScripts, TextsAreReplacedAndUnquoted) {
    ::setenv("TERVANE_REGISTRY_DIR", TempDir().c_str(), 1);
    struct Case {
        const char* script;
        std::string expected;
    };
    const Case cases[] = {
        {"HKCR { k = s '100%% sure' }", "100% sure"},
        {"HKCR { k = s 'it''s' }", "it's"},
        {"HKCR { k = s '%A%%B%' }", "ab"},
        {"HKCR { k = s '' }", ""},
        {"HKCR { 'k' = s bare }", "bare"},
    };
    for (const Case& c : cases) {
        ASSERT_EQ(RunRegistrationScript(c.script, {{"A", "a"}, {"B", "b"}}, true), S_OK)
            << c.script;
        EXPECT_EQ(ClassesRoot(), (Tree{{"k", {{"", c.expected}}}})) << c.script;
        ASSERT_EQ(RunRegistrationScript(c.script, {{"A", "a"}, {"B", "b"}}, false), S_OK);
        EXPECT_EQ(ClassesRoot(), Tree{}) << c.script;
    }
    ::unsetenv("TERVANE_REGISTRY_DIR");
}

TEST(RegistrationScripts, MalformedScriptsAreRefusedBeforeAnyChange) {
    ::setenv("TERVANE_REGISTRY_DIR", TempDir().c_str(), 1);
    const char* const scripts[] = {
        "HKCR { a = s 'x' ",            // no closing brace
        "HKXX { a }",                   // unknown root
        "HKCR { a = s 'unterminated }", // open quote
        "HKCR { a = s '%NOSUCH%' }",    // unknown replacement
        "HKCR { a = q 'x' }",           // unknown value kind
        "HKCR { val }",                 // value without name
    };
    for (const char* script : scripts) {
        EXPECT_EQ(RunRegistrationScript(script, {}, true), DISP_E_EXCEPTION) << script;
        EXPECT_EQ(ClassesRoot(), Tree{}) << script;
    }
    ::unsetenv("TERVANE_REGISTRY_DIR");
}

} // namespace
} // namespace tervane::test
