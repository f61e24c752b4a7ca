// Every byte and byte pair of our tables against Windows' own code page files
// as Wine installs them (skipped where Wine is not installed).
#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "platform/locale/code_pages.h"
#include "tests/support/fixtures.h"

namespace {

class WindowsTable {
public:
    explicit WindowsTable(const std::vector<unsigned char>& bytes) : bytes_(bytes) {
        const unsigned header = Word(0);
        maxCharSize_ = Word(2);
        single_ = header + 1;
        const unsigned glyphs = single_ + 256;
        leadOffsets_ = glyphs + 1 + Word(glyphs) + 1;
        encode_ = header + Word(header);
    }
    bool IsDbcs() const { return maxCharSize_ == 2; }
    char16_t Single(unsigned b) const { return Word(single_ + b); }
    bool IsLead(unsigned b) const { return IsDbcs() && Word(leadOffsets_ + b) != 0; }
    char16_t Pair(unsigned lead, unsigned trail) const {
        return Word(leadOffsets_ + Word(leadOffsets_ + lead) + trail);
    }
    std::uint16_t Encode(char16_t c) const {
        if (IsDbcs())
            return Word(encode_ + 1 + c);
        return bytes_.at((encode_ + 1) * 2 + c);
    }

private:
    std::uint16_t Word(unsigned index) const {
        return static_cast<std::uint16_t>(bytes_.at(index * 2) | (bytes_.at(index * 2 + 1) << 8));
    }
    const std::vector<unsigned char>& bytes_;
    unsigned maxCharSize_ = 1;
    unsigned single_ = 0;
    unsigned leadOffsets_ = 0;
    unsigned encode_ = 0;
};

char16_t Decode(UINT codePage, const char* bytes, int length) {
    char16_t out[2] = {};
    return MultiByteToWideChar(codePage, 0, bytes, length, out, 2) == 1 ? out[0] : u'\0';
}

TEST(CodePageTables, AgreeWithWindowsTables) {
    const UINT codePages[] = {874,  932,  936,  949,  950, 1250, 1251, 1252, 1253, 1254,
                              1255, 1256, 1257, 1258, 437, 737,  775,  850,  852,  855,
                              857,  860,  861,  862,  863, 865,  866,  869};
    for (const UINT codePage : codePages) {
        SCOPED_TRACE(codePage);
        const std::string path = "/usr/share/wine/nls/c_" + std::to_string(codePage) + ".nls";
        if (!std::filesystem::exists(path))
            GTEST_SKIP() << "Wine's code page files are absent";
        const std::vector<unsigned char> file = tervane::test::ReadFile(path);
        const WindowsTable windows(file);

        int decoded = 0;
        for (unsigned b = 1; b < 256; ++b) {
            if (windows.IsLead(b))
                continue;
            const char byte = static_cast<char>(b);
            EXPECT_EQ(unsigned{Decode(codePage, &byte, 1)}, unsigned{windows.Single(b)}) << b;
            ++decoded;
        }
        for (unsigned lead = 0; lead < 256; ++lead) {
            if (!windows.IsLead(lead))
                continue;
            EXPECT_TRUE(IsDBCSLeadByteEx(codePage, static_cast<BYTE>(lead))) << lead;
            for (unsigned trail = 1; trail < 256; ++trail) {
                const char pair[2] = {static_cast<char>(lead), static_cast<char>(trail)};
                const char16_t ours = Decode(codePage, pair, 2);
                const char16_t theirs = windows.Pair(lead, trail);
                EXPECT_EQ(unsigned{ours}, unsigned{theirs}) << lead << " " << trail;
                ++decoded;
            }
        }
        EXPECT_GT(decoded, 200);

        // Windows' encoder also holds best-fit forms; compare only exact ones.
        for (unsigned c = 1; c < 0x10000; ++c) {
            if (c >= 0xD800 && c <= 0xDFFF)
                continue;
            const std::uint16_t theirs = windows.Encode(static_cast<char16_t>(c));
            const char bytes[2] = {static_cast<char>(theirs > 0xFF ? theirs >> 8 : theirs),
                                   static_cast<char>(theirs & 0xFF)};
            const bool exact = Decode(codePage, bytes, theirs > 0xFF ? 2 : 1) == c;
            if (!exact)
                continue;
            const char16_t unit = static_cast<char16_t>(c);
            char ours[2] = {};
            BOOL used = FALSE;
            const int n = WideCharToMultiByte(codePage, 0, &unit, 1, ours, 2, nullptr, &used);
            EXPECT_FALSE(used) << c;
            EXPECT_EQ(n, theirs > 0xFF ? 2 : 1) << c;
            EXPECT_EQ(static_cast<unsigned char>(ours[0]), static_cast<unsigned char>(bytes[0]))
                << c;
        }
    }
}

} // namespace
