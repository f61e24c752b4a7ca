#pragma once
// Helpers of the updater's tests: PE images of each layout built with the
// MinGW assembler and linker, and pefile as an independent reader.
#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace tervane::test {

enum class Layout {
    kLast,   // resource-only image: .rsrc is the last section
    kReloc,  // code with absolute addresses: .rsrc followed by .reloc
    kOther,  // debug sections after .reloc: .rsrc followed by more than .reloc
    kAbsent, // code without resources
    kShared, // the resource section marked as code: nothing in it may move
};

// Links an image of the layout from the update_names fixture's object.
std::string BuildLayout(Layout layout, const std::string& arch, const std::string& dir);

struct Dump {
    // "type\tname\tlanguage\tcode page\tdata hex", by the file's stored order.
    std::vector<std::string> resources;
    std::vector<std::string> orderErrors; // the loader's order, alignment, headers
    bool checksumOk = false;
    std::string overlayHex;
    std::string security;
};
Dump DumpResources(const std::string& path);

std::string Hex(const std::string& bytes);

} // namespace tervane::test
