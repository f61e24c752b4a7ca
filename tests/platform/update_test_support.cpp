#include "tests/platform/update_test_support.h"

#include <fstream>
#include <sstream>
#include <stdexcept>

#include "platform/pe/pe_image.h"
#include "tests/support/fixtures.h"

namespace tervane::test {

namespace {

std::string Run(const std::string& command) {
    int status = 0;
    std::string out = RunCommand(command + " 2>&1", &status);
    if (status != 0)
        throw std::runtime_error(command + " failed: " + out);
    return out;
}

void WriteText(const std::string& path, const std::string& text) {
    std::ofstream(path) << text;
}

} // namespace

std::string BuildLayout(Layout layout, const std::string& arch, const std::string& dir) {
    const bool x64 = arch == "x64";
    const std::string prefix = x64 ? "x86_64-w64-mingw32-" : "i686-w64-mingw32-";
    const std::string resources = std::string(TERVANE_FIXTURE_DIR) + "/update_names." + arch + ".o";
    const std::string out =
        dir + "/" + arch + "-" + std::to_string(static_cast<int>(layout)) + ".dll";
    if (layout == Layout::kLast || layout == Layout::kShared) {
        Run("cp " + FixturePath("update_names", arch) + " " + out);
        if (layout == Layout::kShared) {
            std::vector<unsigned char> bytes = ReadFile(out);
            auto image = pe::PeImage::Parse(bytes);
            std::size_t last = image->Sections().size() - 1;
            std::size_t flags = image->Offsets().sectionTable + last * pe::kSectionHeaderSize + 36;
            bytes[flags] |= 0x20;     // IMAGE_SCN_CNT_CODE
            bytes[flags + 3] |= 0x20; // IMAGE_SCN_MEM_EXECUTE
            WriteFile(out, bytes);
        }
        return out;
    }
    // An absolute address in .data makes the linker emit base relocations.
    WriteText(dir + "/code.s", std::string("    .text\nstart:\n    ret\n"
                                           "    .data\ntable:\n    ") +
                                   (x64 ? ".quad" : ".long") + " start\n");
    WriteText(dir + "/debug.s", "    .section .debug_info,\"dr\"\n    .long 0x11223344\n");
    Run(prefix + "as " + dir + "/code.s -o " + dir + "/code.o");
    Run(prefix + "as " + dir + "/debug.s -o " + dir + "/debug.o");
    std::string objects = dir + "/code.o";
    if (layout == Layout::kReloc)
        objects += " " + resources;
    if (layout == Layout::kOther)
        objects += " " + dir + "/debug.o " + resources;
    Run(prefix + "ld -shared -e 0 " + objects + " -o " + out);
    return out;
}

Dump DumpResources(const std::string& path) {
    std::string text =
        Run(DebianPython() + " " + TERVANE_SOURCE_DIR + "/tests/platform/update_dump.py " + path);
    Dump dump;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        if (line.size() < 2 || line[1] != '\t')
            throw std::runtime_error("unexpected dump line: " + line);
        const std::string rest = line.substr(2);
        if (line[0] == 'R')
            dump.resources.push_back(rest);
        else if (line[0] == 'E')
            dump.orderErrors.push_back(rest);
        else if (line[0] == 'C')
            dump.checksumOk = rest == "1";
        else if (line[0] == 'O')
            dump.overlayHex = rest;
        else if (line[0] == 'S')
            dump.security = rest;
    }
    return dump;
}

std::string Hex(const std::string& bytes) {
    static const char* digits = "0123456789abcdef";
    std::string out;
    for (unsigned char c : bytes) {
        out.push_back(digits[c >> 4]);
        out.push_back(digits[c & 15]);
    }
    return out;
}

} // namespace tervane::test
