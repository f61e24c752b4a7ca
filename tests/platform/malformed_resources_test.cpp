// Damaged files made from a good one: each ends in a clean failure of the
// step that meets the damage, with Win32's last error, and nothing else.
#include <cstdio>
#include <functional>
#include <gtest/gtest.h>
#include <string>

#include "platform/byte_reader.h"
#include "platform/diag/failure_place.h"
#include "platform/pe/pe_image.h"
#include "platform/win32/last_error.h"
#include "platform/win32/module_image.h"
#include "tests/platform/resource_walk.h"
#include "tests/support/fixtures.h"

namespace tervane {
namespace {

using Image = std::vector<std::uint8_t>;

// File offsets of the structures of the reader fixture's directory, found by
// following the format by hand.
struct Layout {
    Image bytes;
    std::size_t sectionHeader = 0; // the resource section's header
    std::size_t dataDirectory = 0; // the resource data directory entry
    std::size_t root = 0;
    std::uint32_t sectionRva = 0;

    std::uint32_t U32(std::size_t at) const { return LoadU32LE(&bytes[at]); }
    // Entry i of the directory at file offset dir.
    std::size_t Entry(std::size_t dir, std::size_t i) const { return dir + 16 + 8 * i; }
    std::size_t Child(std::size_t entry) const { return root + (U32(entry + 4) & 0x7FFFFFFF); }
};

Layout ReaderLayout(const std::string& arch) {
    Layout at;
    auto file = test::ReadFile(test::FixturePath("reader", arch));
    at.bytes.assign(file.begin(), file.end());
    auto image = pe::PeImage::Parse(at.bytes);
    EXPECT_TRUE(image);
    auto rsrc = image->Directory(pe::kResourceDirectory);
    auto index = *image->SectionIndexForRva(rsrc.rva);
    const auto& section = image->Sections()[index];
    at.sectionHeader = image->Offsets().sectionTable + index * pe::kSectionHeaderSize;
    at.dataDirectory = image->Offsets().dataDirectories + 8 * pe::kResourceDirectory;
    at.root = section.pointerToRawData + (rsrc.rva - section.virtualAddress);
    at.sectionRva = section.virtualAddress;
    return at;
}

HMODULE Load(Image bytes) {
    return LoadModuleFromBytes(std::move(bytes), "damaged.dll");
}

// Root entries of the fixture: MYTYPE, OTHER TYPE, 6, 10, 240.
constexpr std::size_t kStringType = 2;
constexpr std::size_t kRcdataType = 3;

TEST(MalformedResources, DamageFailsTheStepThatMeetsIt) {
    struct Case {
        const char* what;
        std::function<void(Layout&)> damage;
        std::function<BOOL(HMODULE)> step; // the step that must fail
        DWORD error;
        std::function<bool(HMODULE)> stillWorks; // a step that must not
        // What the failure place must say, where the code alone can't tell.
        std::function<std::string(const Layout&)> place = nullptr;
    };
    auto set = [](Layout& l, std::size_t at, std::uint32_t v) { StoreU32LE(&l.bytes[at], v); };
    auto enumTypes = [](HMODULE m) {
        return EnumResourceTypesA(
            m, [](HMODULE, const ResName&, LONG_PTR) -> BOOL { return TRUE; }, 0);
    };
    auto enumNames = [](ResName type) {
        return [type](HMODULE m) {
            return EnumResourceNamesA(
                m, type,
                [](HMODULE, const ResName&, const ResName&, LONG_PTR) -> BOOL { return TRUE; }, 0);
        };
    };
    auto find = [](ResName type, ResName name, WORD language) {
        return [=](HMODULE m) { return FindResourceExA(m, type, name, language) != nullptr; };
    };
    auto load = [](ResName type, ResName name, WORD language) {
        return [=](HMODULE m) {
            HRSRC found = FindResourceExA(m, type, name, language);
            return found && LoadResource(m, found) != nullptr;
        };
    };
    auto string1 = [](Layout& l) {
        // Language directory of string block 1, and its first entry (0x407).
        std::size_t names = l.Child(l.Entry(l.root, kStringType));
        return l.Entry(l.Child(l.Entry(names, 0)), 0);
    };
    // The readable section ends where the root's five entries end, or a byte
    // before: at the limit the entries are read and the names behind fail.
    auto cutAfterRoot = [&](long less) {
        return [=](Layout& l) {
            const std::uint32_t sectionStart = l.U32(l.sectionHeader + 20);
            set(l, l.sectionHeader + 8,
                static_cast<std::uint32_t>(l.root - sectionStart + 16 + 8 * 5 - less));
        };
    };
    const Case cases[] = {
        {"root entries ending at the section's end", cutAfterRoot(0), enumTypes,
         ERROR_BAD_EXE_FORMAT, nullptr,
         [](const Layout& l) {
             char name[16];
             std::snprintf(name, sizeof name, "0x%X", l.U32(l.Entry(l.root, 0)) & 0x7FFFFFFF);
             return "resource directory at offset 0x0: name at " + std::string(name) +
                    " lies outside the section";
         }},
        {"root entries a byte past the section's end", cutAfterRoot(1), enumTypes,
         ERROR_BAD_EXE_FORMAT, nullptr,
         [](const Layout&) {
             return std::string("resource directory at offset 0x0: 5 entries run past the section");
         }},
        // The loader looks ordinals up behind the named entries the header counts.
        {"named entries counted over an ordinal type",
         [&](Layout& l) { StoreU16LE(&l.bytes[l.root + 12], 3); }, find(RT_STRING, 1, 0x409),
         ERROR_RESOURCE_TYPE_NOT_FOUND, find(RT_RCDATA, "AB", 0x409)},
        {"no resource directory", [&](Layout& l) { set(l, l.dataDirectory, 0); }, enumTypes,
         ERROR_RESOURCE_DATA_NOT_FOUND, nullptr},
        {"huge root entry count", [&](Layout& l) { StoreU16LE(&l.bytes[l.root + 14], 0xFFFF); },
         enumTypes, ERROR_BAD_EXE_FORMAT, nullptr},
        {"type name outside the section",
         [&](Layout& l) { set(l, l.Entry(l.root, 0), 0xFFFFFFF0); }, enumTypes,
         ERROR_BAD_EXE_FORMAT, nullptr},
        {"type refers to the root",
         [&](Layout& l) { set(l, l.Entry(l.root, kRcdataType) + 4, 0x80000000); },
         find(RT_RCDATA, "AB", 0x409), ERROR_BAD_EXE_FORMAT, find(RT_STRING, 1, 0x409)},
        {"type refers to another type's names",
         [&](Layout& l) {
             set(l, l.Entry(l.root, kRcdataType) + 4, l.U32(l.Entry(l.root, kStringType) + 4));
         },
         enumNames(RT_RCDATA), ERROR_BAD_EXE_FORMAT, find(RT_STRING, 1, 0x409)},
        {"type holds data, not a directory",
         [&](Layout& l) { set(l, l.Entry(l.root, kRcdataType) + 4, 0x10); }, enumNames(RT_RCDATA),
         ERROR_BAD_EXE_FORMAT, enumNames(RT_STRING)},
        {"data entry outside the section", [&](Layout& l) { set(l, string1(l) + 4, 0x7FFFFFF0); },
         find(RT_STRING, 1, 0x407), ERROR_BAD_EXE_FORMAT, find(RT_STRING, 2, 0x409)},
        {"language holds a directory", [&](Layout& l) { set(l, string1(l) + 4, 0x80000000); },
         find(RT_STRING, 1, 0x409), ERROR_BAD_EXE_FORMAT, find(RT_STRING, 2, 0x409)},
        {"data outside every section", [&](Layout& l) { set(l, l.Child(string1(l)), 0xFFFFFF00); },
         load(RT_STRING, 1, 0x407), ERROR_RESOURCE_DATA_NOT_FOUND, load(RT_STRING, 1, 0x409)},
        {"data asking for gigabytes the file does not hold",
         [&](Layout& l) {
             set(l, l.sectionHeader + 8, 0xF0000000);
             set(l, l.Child(string1(l)) + 4, 0x80000000);
         },
         load(RT_STRING, 1, 0x407), ERROR_NOT_ENOUGH_MEMORY, load(RT_STRING, 1, 0x409)},
    };
    for (const std::string arch : {"x64", "x86"}) {
        for (const Case& c : cases) {
            Layout layout = ReaderLayout(arch);
            c.damage(layout);
            HMODULE module = Load(layout.bytes);
            ASSERT_TRUE(module) << c.what;
            SetLastError(0);
            EXPECT_FALSE(c.step(module)) << arch << ": " << c.what;
            EXPECT_EQ(GetLastError(), c.error) << arch << ": " << c.what;
            if (c.place) {
                EXPECT_EQ(FailurePlace(), c.place(layout)) << arch << ": " << c.what;
            }
            if (c.stillWorks) {
                EXPECT_TRUE(c.stillWorks(module)) << arch << ": " << c.what;
            }
            // And a whole walk ends cleanly.
            (void)test::WalkResources(module);
            FreeLibrary(module);
        }
    }
}

TEST(MalformedResources, EveryTruncationOfTheFileFailsToLoad) {
    for (const std::string arch : {"x64", "x86"}) {
        Layout l = ReaderLayout(arch);
        // What follows the sections (the linker's symbols) may go; any cut
        // into a section's raw data leaves a file the loader refuses.
        std::size_t end = pe::PeImage::Parse(l.bytes)->EndOfSectionData();
        ASSERT_LT(end, l.bytes.size() + 1);
        for (std::size_t size = 0; size < l.bytes.size(); ++size) {
            SetLastError(0);
            HMODULE module = Load(Image(l.bytes.begin(), l.bytes.begin() + size));
            if (size >= end) {
                ASSERT_TRUE(module) << arch << " cut at " << size;
                EXPECT_EQ(test::WalkResources(module).firstError, 0u);
                FreeLibrary(module);
                continue;
            }
            EXPECT_EQ(module, nullptr) << arch << " cut at " << size;
            EXPECT_EQ(GetLastError(),
                      size ? DWORD{ERROR_BAD_EXE_FORMAT} : DWORD{ERROR_FILE_INVALID});
            if (module)
                FreeLibrary(module);
        }
    }
}

} // namespace
} // namespace tervane
