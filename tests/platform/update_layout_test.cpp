// Transactions on real images of every layout, checked with pefile as an
// independent reader and byte by byte against the original.
#include <algorithm>
#include <gtest/gtest.h>
#include <map>
#include <string>
#include <tuple>
#include <vector>

#include "platform/pe/pe_image.h"
#include "platform/update/image_layout.h"
#include "platform/update/pending_files.h"
#include "platform/update/resource_reader.h"
#include "platform/update/resource_update.h"
#include "platform/win32/last_error.h"
#include "tests/platform/update_test_support.h"
#include "tests/support/fixtures.h"

namespace tervane::test {
namespace {

struct Op {
    std::string type; // "#10" or a name, as passed to UpdateResourceA
    std::string name;
    WORD language;
    std::string data;   // empty: delete
    std::string stored; // the name as the file must store it
};

struct Case {
    const char* label;
    bool deleteExisting;
    std::vector<Op> ops;
};

const std::vector<Case>& Cases() {
    static const std::vector<Case> cases = {
        {"add numbered",
         false,
         {{"#10", "#1", 0x409, "one", "#1"},
          {"#300", "#65535", 0x407, "top", "#65535"},
          {"#10", "#65535", 0, "neutral", "#65535"}}},
        {"add named",
         false,
         {{"#10", "a-b", 0x409, "hyphen", "A-B"},
          {"#10", "\xC3\xB6", 0x409, "umlaut", "\xC3\x96"},
          {"mytype", "x", 0, "named type", "X"}}},
        {"replace",
         false,
         {{"#10", "ab", 0x409, "replaced through lower case", "AB"},
          {"BLOB", "#7", 0x409, std::string(3000, 'b'), "#7"}}},
        {"delete",
         false,
         {{"#10", "A_B", 0x409, "", "A_B"},
          {"BLOB", "#7", 0x409, "", "#7"},
          {"#10", "absent", 0, "", "ABSENT"}}},
        {"grow past the raw size", false, {{"#10", "#2", 0x409, std::string(9000, 'g'), "#2"}}},
        {"start over", true, {{"#10", "#5", 0x407, "only", "#5"}}},
    };
    return cases;
}

std::string TypeText(const std::string& type) {
    if (type[0] == '#')
        return type;
    std::string upper = type;
    std::transform(upper.begin(), upper.end(), upper.begin(), ::toupper);
    return upper;
}

// Fields that an update may change, as (offset, length) in the headers.
std::vector<std::pair<std::size_t, std::size_t>> MutableHeaderFields(const pe::PeImage& image) {
    const pe::HeaderOffsets& at = image.Offsets();
    return {{at.fileHeader + 2, 2},
            {at.fileHeader + 8, 4},
            {at.checksum, 4},
            {at.sizeOfImage, 4},
            {at.sizeOfInitializedData, 4},
            {at.dataDirectories + 2 * 8, 8},
            {at.dataDirectories + 4 * 8, 8},
            {at.dataDirectories + 5 * 8, 8}};
}

void ExpectUnchangedOutsideResources(const std::vector<unsigned char>& before,
                                     const std::vector<unsigned char>& after) {
    auto old = pe::PeImage::Parse(before);
    auto now = pe::PeImage::Parse(after);
    ASSERT_TRUE(old && now);
    std::vector<unsigned char> a(before.begin(), before.begin() + old->Offsets().sectionTable);
    std::vector<unsigned char> b(after.begin(), after.begin() + old->Offsets().sectionTable);
    for (auto [offset, length] : MutableHeaderFields(*old))
        for (std::size_t i = offset; i < offset + length; ++i)
            a[i] = b[i] = 0;
    EXPECT_EQ(a, b) << "headers changed outside the fields an update may change";

    auto resources = old->SectionIndexForRva(old->Directory(pe::kResourceDirectory).rva);
    ASSERT_GE(now->Sections().size(), old->Sections().size());
    for (std::size_t i = 0; i < old->Sections().size(); ++i) {
        const pe::SectionHeader& s = old->Sections()[i];
        const pe::SectionHeader& t = now->Sections()[i];
        EXPECT_EQ(s.Name(), t.Name());
        if (resources && *resources == i)
            continue;
        if (s.Name() != ".reloc") { // relocations may move, nothing else
            EXPECT_EQ(s.virtualAddress, t.virtualAddress) << s.Name();
        }
        ASSERT_EQ(s.sizeOfRawData, t.sizeOfRawData) << s.Name();
        EXPECT_TRUE(std::equal(before.begin() + s.pointerToRawData,
                               before.begin() + s.pointerToRawData + s.sizeOfRawData,
                               after.begin() + t.pointerToRawData))
            << "bytes of " << s.Name() << " changed";
    }
    // The loader's view: sections ascend without overlap, the image ends
    // where the last one does.
    std::uint32_t end = 0;
    for (const pe::SectionHeader& t : now->Sections()) {
        EXPECT_GE(t.virtualAddress, end) << t.Name();
        EXPECT_EQ(t.pointerToRawData % now->FileAlignment(), 0u) << t.Name();
        EXPECT_EQ(t.sizeOfRawData % now->FileAlignment(), 0u) << t.Name();
        end = t.virtualAddress + (t.MappedSize() + now->SectionAlignment() - 1) /
                                     now->SectionAlignment() * now->SectionAlignment();
    }
    EXPECT_EQ(now->SizeOfImage(), end);
}

using LayoutParam = std::tuple<Layout, const char*>;

std::string LayoutName(const ::testing::TestParamInfo<LayoutParam>& info) {
    static const char* names[] = {"Last", "Reloc", "Other", "Absent", "Shared"};
    return std::string(names[static_cast<int>(std::get<0>(info.param))]) + "_" +
           std::get<1>(info.param);
}

class UpdateLayoutTest : public ::testing::TestWithParam<LayoutParam> {};

TEST_P(UpdateLayoutTest, EveryCaseGivesTheExpectedResourcesAndKeepsTheRest) {
    const std::string dir = TempDir();
    const auto [layout, arch] = GetParam();
    const std::string original = BuildLayout(layout, arch, dir);
    const std::vector<unsigned char> before = ReadFile(original);
    const Dump initial = DumpResources(original);

    for (const Case& c : Cases()) {
        SCOPED_TRACE(c.label);
        const std::string path = dir + "/work.dll";
        WriteFile(path, before);
        std::map<std::string, std::string> expected; // "type\tname\tlang" -> "0\thex"
        if (!c.deleteExisting) {
            for (const std::string& line : initial.resources) {
                auto cut = line.find('\t', line.find('\t', line.find('\t') + 1) + 1);
                expected[line.substr(0, cut)] = line.substr(cut + 1);
            }
        }
        bool first = true;
        for (const Op& op : c.ops) {
            HANDLE h = BeginUpdateResourceA(path.c_str(), first && c.deleteExisting);
            ASSERT_NE(h, nullptr) << GetLastError();
            first = false;
            const void* data = op.data.empty() ? nullptr : op.data.data();
            ASSERT_TRUE(UpdateResourceA(h, ResName(op.type), ResName(op.name), op.language, data,
                                        static_cast<DWORD>(op.data.size())));
            ASSERT_TRUE(EndUpdateResourceA(h, FALSE)) << GetLastError();
            std::string key =
                TypeText(op.type) + "\t" + op.stored + "\t" + std::to_string(op.language);
            if (op.data.empty())
                expected.erase(key);
            else
                expected[key] = "0\t" + Hex(op.data);
        }
        ASSERT_FALSE(update::FlushPendingFile(path));
        const std::vector<unsigned char> after = ReadFile(path);

        Dump dump = DumpResources(path);
        std::vector<std::string> want;
        for (const auto& [key, value] : expected)
            want.push_back(key + "\t" + value);
        std::vector<std::string> got = dump.resources;
        std::sort(got.begin(), got.end());
        std::sort(want.begin(), want.end());
        EXPECT_EQ(got, want);
        EXPECT_TRUE(dump.orderErrors.empty()) << dump.orderErrors.front();
        EXPECT_TRUE(dump.checksumOk);
        EXPECT_EQ(dump.overlayHex, initial.overlayHex) << "appended data changed";
        ExpectUnchangedOutsideResources(before, after);
        if (layout == Layout::kShared && std::string(c.label) == "grow past the raw size") {
            // Code may refer to the old section: it stays, and the tree moves out.
            auto old = pe::PeImage::Parse(before);
            auto now = pe::PeImage::Parse(after);
            ASSERT_EQ(now->Sections().size(), old->Sections().size() + 1);
            const pe::SectionHeader& o = old->Sections().back();
            EXPECT_TRUE(std::equal(
                before.begin() + o.pointerToRawData,
                before.begin() + o.pointerToRawData + o.sizeOfRawData,
                after.begin() + now->Sections()[old->Sections().size() - 1].pointerToRawData));
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Layouts, UpdateLayoutTest,
                         ::testing::Combine(::testing::Values(Layout::kLast, Layout::kReloc,
                                                              Layout::kOther, Layout::kAbsent,
                                                              Layout::kShared),
                                            ::testing::Values("x64", "x86")),
                         LayoutName);

// File alignments around the limit: every section is padded to it, so one
// too large would turn a file of kilobytes into gigabytes.
TEST(UpdateAlignment, AboveSixtyFourKibibytesIsRefused) {
    const struct {
        std::uint32_t alignment;
        bool written;
    } rows[] = {{0x200, true}, {0x10000, true}, {0x20000, false}, {0x8000000, false}};
    for (const auto& row : rows) {
        std::vector<std::uint8_t> bytes = ReadFile(FixturePath("fwd_strings", "x64"));
        const std::uint32_t optional = LoadU32LE(&bytes[0x3C]) + 24;
        for (int i = 0; i < 4; ++i)
            bytes[optional + 36 + i] = static_cast<std::uint8_t>(row.alignment >> (8 * i));
        auto image = pe::PeImage::Parse(std::move(bytes));
        ASSERT_TRUE(image) << row.alignment;
        auto tree = update::ReadResourceTree(*image);
        ASSERT_TRUE(tree) << row.alignment;
        auto written = update::RewriteImage(*image, *tree);
        EXPECT_EQ(static_cast<bool>(written), row.written) << std::hex << row.alignment;
        if (written) {
            EXPECT_LT(written->size(), 4u * 0x10000 * (image->Sections().size() + 1));
        }
    }
}

} // namespace
} // namespace tervane::test
