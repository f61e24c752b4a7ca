// The loader's view of rewritten images: a small program, assembled and
// linked here with its own resources, is updated and then run under Wine,
// whose binary searches find each resource only if every directory is in
// the order Windows needs. Skips when Wine is not installed.
#include <gtest/gtest.h>
#include <string>
#include <unistd.h>
#include <vector>

#include "platform/pe/pe_image.h"
#include "platform/pe/resource_name_text.h"
#include "platform/update/pending_files.h"
#include "platform/update/resource_reader.h"
#include "platform/update/resource_update.h"
#include "platform/win32/last_error.h"
#include "tests/support/fixtures.h"

namespace tervane::test {
namespace {

std::string WineProgram() {
    for (const char* candidate : {"/usr/lib/wine/wine64", "/usr/bin/wine64", "/usr/bin/wine"})
        if (::access(candidate, X_OK) == 0)
            return candidate;
    return {};
}

struct Lookup {
    std::string type; // "#10" or a name as stored
    std::string name;
    WORD language;
};

// Each lookup must succeed with FindResourceExW, in this order; the exit
// status names the first that failed (1-based), or says LoadStringW failed.
const std::vector<Lookup> kLookups = {
    {"#10", "AB", 0x409},       {"#10", "AB", 0x407},     {"#10", "A_B", 0x409},
    {"#10", "A-B", 0x409},      {"#10", "A", 0x409},      {"#10", "AA", 0x409},
    {"#10", "\xC3\x96", 0x409}, {"#10", "#123", 0x409},   {"#10", "#1", 0x409},
    {"#10", "#32767", 0},       {"#10", "#65535", 0x409}, {"#10", "#65535", 0x407},
    {"#10", "#77", 0x409},      {"BLOB", "#7", 0x409},    {"MYTYPE", "X", 0},
    {"#5", "#102", 0x409},      {"#6", "#1", 0x409},
};
constexpr int kLoadStringFailed = 100;
const std::string kTranslated = "Translated";

std::string Operand(const std::string& id, const std::string& label) {
    return id[0] == '#' ? id.substr(1) : label;
}

std::string Program() {
    std::string s = R"(    .text
    .globl start
start:
    sub $40, %rsp
    xor %ecx, %ecx
    call *__imp_GetModuleHandleW(%rip)
    mov %rax, %r12
    lea lookups(%rip), %r13
    mov $1, %r14d
next:
    mov (%r13), %rdx
    test %rdx, %rdx
    jz strings
    mov 8(%r13), %r8
    movzwl 16(%r13), %r9d
    mov %r12, %rcx
    call *__imp_FindResourceExW(%rip)
    test %rax, %rax
    jz fail
    add $24, %r13
    inc %r14d
    jmp next
strings:
    mov $)" + std::to_string(kLoadStringFailed) +
                    R"(, %r14d
    mov %r12, %rcx
    mov $1, %edx
    lea buffer(%rip), %r8
    mov $64, %r9d
    call *__imp_LoadStringW(%rip)
    cmp $)" + std::to_string(kTranslated.size()) +
                    R"(, %eax
    jne fail
    xor %ecx, %ecx
    call *__imp_ExitProcess(%rip)
fail:
    mov %r14d, %ecx
    call *__imp_ExitProcess(%rip)
    .data
lookups:
)";
    std::string strings;
    for (std::size_t i = 0; i < kLookups.size(); ++i) {
        const Lookup& l = kLookups[i];
        std::string t = "type" + std::to_string(i), n = "name" + std::to_string(i);
        s += "    .quad " + Operand(l.type, t) + ", " + Operand(l.name, n) + ", " +
             std::to_string(l.language) + "\n";
        for (auto [id, label] : {std::pair{l.type, t}, std::pair{l.name, n}}) {
            if (id[0] == '#')
                continue;
            strings += label + ":\n    .short ";
            for (char16_t unit : pe::Utf8ToUtf16(id))
                strings += std::to_string(unit) + ", ";
            strings += "0\n";
        }
    }
    return s + "    .quad 0, 0, 0\n" + strings + "buffer:\n    .space 256\n";
}

void WriteText(const std::string& path, const std::string& text) {
    WriteFile(path, std::vector<unsigned char>(text.begin(), text.end()));
}

void Shell(const std::string& command) {
    int status = 0;
    std::string out = RunCommand(command + " 2>&1", &status);
    ASSERT_EQ(status, 0) << command << "\n" << out;
}

bool Put(const std::string& path, const ResName& type, const ResName& name, WORD language,
         const std::vector<std::uint8_t>& data) {
    HANDLE h = BeginUpdateResourceA(path.c_str(), FALSE);
    return h &&
           UpdateResourceA(h, type, name, language, data.data(), static_cast<DWORD>(data.size())) &&
           EndUpdateResourceA(h, FALSE);
}

std::vector<std::uint8_t> StringBlockWithSecond(const std::string& text) {
    std::vector<std::uint8_t> block(2, 0); // string 0: empty
    block.push_back(static_cast<std::uint8_t>(text.size()));
    block.push_back(0);
    for (char c : text) {
        block.push_back(static_cast<std::uint8_t>(c));
        block.push_back(0);
    }
    block.resize(block.size() + 14 * 2, 0);
    return block;
}

TEST(UpdateUnderWine, EveryResourceIsFoundByTheLoader) {
    const std::string wine = WineProgram();
    if (wine.empty())
        GTEST_SKIP() << "Wine is not installed";
    const std::string dir = TempDir();
    WriteText(dir + "/kernel32.def",
              "LIBRARY kernel32.dll\nEXPORTS\nGetModuleHandleW\nFindResourceExW\nExitProcess\n");
    WriteText(dir + "/user32.def", "LIBRARY user32.dll\nEXPORTS\nLoadStringW\n");
    WriteText(dir + "/prog.s", Program());
    const std::string tools = "x86_64-w64-mingw32-";
    Shell(tools + "dlltool -d " + dir + "/kernel32.def -l " + dir + "/libkernel32.a");
    Shell(tools + "dlltool -d " + dir + "/user32.def -l " + dir + "/libuser32.a");
    Shell(tools + "as " + dir + "/prog.s -o " + dir + "/prog.o");
    const std::string exe = dir + "/prog.exe";
    Shell(tools + "ld -e start --subsystem console " + dir + "/prog.o " + TERVANE_FIXTURE_DIR +
          "/update_names.x64.o -L" + dir + " -lkernel32 -luser32 -o " + exe);

    auto sample = pe::PeImage::Parse(ReadFile(FixturePath("sample", "x64")));
    auto sampleTree = update::ReadResourceTree(*sample);
    ASSERT_TRUE(sampleTree);
    const update::ResourceLeaf* dialog =
        sampleTree->Find(update::ResKey::Id(5), update::ResKey::Id(102), 0x409);
    ASSERT_NE(dialog, nullptr);

    std::vector<std::uint8_t> small = {1, 2, 3};
    for (const char* name : {"a-b", "A", "aa", "\xC3\xB6", "#123", "#1"})
        ASSERT_TRUE(Put(exe, RT_RCDATA, name, 0x409, small)) << name << " " << GetLastError();
    ASSERT_TRUE(Put(exe, RT_RCDATA, ResName(0x7FFF), 0, small));
    ASSERT_TRUE(Put(exe, RT_RCDATA, ResName(0xFFFF), 0x407, small));
    // Large enough to push the relocations behind a grown resource section.
    ASSERT_TRUE(Put(exe, RT_RCDATA, ResName(77), 0x409, std::vector<std::uint8_t>(20000, 7)));
    ASSERT_TRUE(Put(exe, "mytype", "x", 0, small));
    ASSERT_TRUE(Put(exe, RT_DIALOG, ResName(102), 0x409, *dialog->data));
    ASSERT_TRUE(Put(exe, RT_STRING, ResName(1), 0x409, StringBlockWithSecond(kTranslated)));
    ASSERT_FALSE(update::FlushPendingFile(exe));

    const std::string prefix = "/tmp/tervane-wine-prefix";
    int status = -1;
    std::string out =
        RunCommand("WINEPREFIX=" + prefix + " WINEDEBUG=-all WINEDLLOVERRIDES='mscoree,mshtml=' " +
                       wine + " " + exe + " 2>&1",
                   &status);
    ASSERT_NE(status, -1) << out;
    if (status == kLoadStringFailed)
        FAIL() << "LoadStringW did not find the translated string";
    ASSERT_EQ(status, 0) << "lookup " << status << " failed: " << kLookups[status - 1].type << " "
                         << kLookups[status - 1].name << " " << kLookups[status - 1].language;
}

} // namespace
} // namespace tervane::test
