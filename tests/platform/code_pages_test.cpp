#include "platform/locale/code_pages.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include "platform/locale/utf8.h"
#include "platform/win32/last_error.h"

namespace {

std::u16string ToWide(const std::string& text, UINT codePage) {
    char16_t buffer[64];
    SetLastError(0);
    const int n =
        MultiByteToWideChar(codePage, 0, text.data(), static_cast<int>(text.size()), buffer, 64);
    return std::u16string(buffer, static_cast<std::size_t>(n));
}

// Bytes as two hex digits, UTF-16 units as four, space-separated.
template <typename Char> std::string Hex(std::basic_string_view<Char> text) {
    std::string out;
    char unit[8];
    for (const Char c : text) {
        std::snprintf(unit, sizeof unit, sizeof(Char) == 1 ? "%s%02x" : "%s%04x",
                      out.empty() ? "" : " ", unsigned(std::make_unsigned_t<Char>(c)));
        out += unit;
    }
    return out;
}
std::string Hex(std::string_view text) {
    return Hex<char>(text);
}
std::string Hex(std::u16string_view text) {
    return Hex<char16_t>(text);
}

// Expected values as Windows gives them.
TEST(CodePages, DecodingReplacesWhatItCannotRead) {
    struct Case {
        UINT codePage;
        std::string bytes;
        std::string units;
    };
    const Case cases[] = {
        {CP_UTF8, "\xF0\x9F\x98\x80", "d83d de00"},
        {CP_UTF8, "\xC0\xAF", "fffd fffd"},              // C0 never starts a character
        {CP_UTF8, "\xED\xA0\x80", "fffd fffd"},          // a surrogate ends at its second byte
        {CP_UTF8, "\xF4\x90\x80\x80", "fffd fffd fffd"}, // past U+10FFFF
        {CP_UTF8, "\xE0\x80\x80\x41", "fffd fffd 0041"}, // overlong
        {CP_UTF8, "\xE2\x82\x41", "fffd 0041"},          // cut short before a letter
        {CP_UTF8, "\xF0\x9F\x98", "fffd"},               // cut short at the end
        {CP_ACP, "\xC3\xB6", "00f6"},
        {932, "A\x81", "0041 30fb"},                    // a lead byte at the end
        {932, "\x81\x20", "30fb"},                      // a bad trail byte goes with its lead
        {932, std::string("\x81\x00", 2), "30fb 0000"}, // but a NUL does not
        {936, "\x81\x20", "003f"},
        {1258, "A\xCC", "0041 0300"}, // never composed
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.codePage);
        SCOPED_TRACE(Hex(c.bytes));
        EXPECT_EQ(Hex(ToWide(c.bytes, c.codePage)), c.units);
        EXPECT_EQ(GetLastError(), 0u);
    }
}

TEST(CodePages, EncodingUsesTheDefaultCharacter) {
    struct Case {
        UINT codePage;
        std::u16string units;
        std::string bytes;
        BOOL used;
    };
    const Case cases[] = {
        {1252, u"A\u20AC\u3042", "41 80 3f", TRUE},
        {1252, u"\U0001F600", "3f 3f", TRUE}, // each half of a pair
        {1250, u"\u0100", "3f", TRUE},        // no best fit: Windows would give 'A'
        {1258, u"\u1EC7", "3f", TRUE},        // precomposed forms have no byte
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.codePage);
        SCOPED_TRACE(Hex(c.units));
        char buffer[32];
        BOOL used = 7;
        const int n =
            WideCharToMultiByte(c.codePage, 0, c.units.data(), static_cast<int>(c.units.size()),
                                buffer, sizeof buffer, nullptr, &used);
        EXPECT_EQ(Hex(std::string_view(buffer, static_cast<std::size_t>(n))), c.bytes);
        EXPECT_EQ(used, c.used);
    }
    EXPECT_EQ(Hex(tervane::Narrow(u"\xD800\x41", CP_UTF8)), "ef bf bd 41");
    EXPECT_EQ(Hex(tervane::Narrow(u"\xD83D\xDE00", CP_UTF8)), "f0 9f 98 80");
    char buffer[8];
    BOOL used = FALSE;
    EXPECT_EQ(WideCharToMultiByte(932, 0, u"\u20AC", 1, buffer, 8, "\x81\x48", &used), 2);
    EXPECT_EQ(Hex(std::string_view(buffer, 2)), "81 48"); // a two-byte default in a DBCS page
    EXPECT_TRUE(used);
}

TEST(CodePages, WholeStringHelpersInOtherPages) {
    const std::u16string text = u"\u65E5\u672C\u8A9E \\";
    const std::string bytes = "\x93\xFA\x96\x7B\x8C\xEA \\";
    EXPECT_EQ(Hex(tervane::Narrow(text, 932)), Hex(bytes));
    EXPECT_EQ(Hex(tervane::Widen(bytes, 932)), Hex(text));
    EXPECT_EQ(tervane::Narrow(u"\u00E9t\u00E9"), "\xC3\xA9t\xC3\xA9");
    EXPECT_EQ(tervane::Widen("abc", 42424), u"");
}

TEST(CodePages, SizesAndFailures) {
    char16_t wide[8];
    char narrow[8];
    SetLastError(0);
    EXPECT_EQ(MultiByteToWideChar(1252, 0, "abc", -1, nullptr, 0), 4);
    EXPECT_EQ(MultiByteToWideChar(1252, 0, "abc", -1, wide, 3), 0);
    EXPECT_EQ(GetLastError(), ERROR_INSUFFICIENT_BUFFER);
    EXPECT_EQ(MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, "a\xC3", 2, wide, 8), 0);
    EXPECT_EQ(GetLastError(), ERROR_NO_UNICODE_TRANSLATION);
    EXPECT_EQ(MultiByteToWideChar(12345, 0, "abc", 3, wide, 8), 0);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
    SetLastError(0);
    // A two-byte character never leaves its lead byte alone at the end.
    EXPECT_EQ(WideCharToMultiByte(932, 0, u"A\u3042", 2, narrow, 2, nullptr, nullptr), 0);
    EXPECT_EQ(GetLastError(), ERROR_INSUFFICIENT_BUFFER);
}

TEST(CodePages, LeadBytes) {
    const std::pair<UINT, BYTE> notLead[] = {{932, 0xA0}, {936, 0xFF}, {CP_UTF8, 0xC3}};
    for (const auto& [codePage, byte] : notLead)
        EXPECT_FALSE(IsDBCSLeadByteEx(codePage, byte)) << codePage << " " << int{byte};
    for (int b = 0; b < 256; ++b)
        EXPECT_FALSE(IsDBCSLeadByte(static_cast<BYTE>(b)));
    EXPECT_EQ(GetACP(), 65001u);
}

// Widening takes a shorter road for UTF-8 and must land where the conversion
// call does, ill-formed input included.
TEST(CodePages, WideningUtf8IsWhatTheCallGives) {
    const std::string narrow[] = {"cut \xe6\x97", "\xed\xa0\x80 surrogate",
                                  std::string("nul\0x", 5),
                                  // Past the stack's room and across blocks of sixteen.
                                  std::string(15, 'a') + "\xc3\xa9" + std::string(20, 'b'),
                                  std::string(16, 'a') + "\xf0\x9f\x98\x80" + std::string(14, 'c'),
                                  std::string(255, 'a') + "\xe6\x97\xa5"};
    for (const std::string& text : narrow) {
        const int length = static_cast<int>(text.size());
        const int needed = MultiByteToWideChar(CP_UTF8, 0, text.data(), length, nullptr, 0);
        std::u16string expected(static_cast<std::size_t>(needed), u'\0');
        MultiByteToWideChar(CP_UTF8, 0, text.data(), length, expected.data(), needed);
        EXPECT_EQ(tervane::Widen(text, CP_UTF8), expected) << Hex(text);
        EXPECT_EQ(tervane::Widen(text, CP_THREAD_ACP), expected) << Hex(text);
    }
}

// Writing in place reads blocks of units at once: texts whose non-ASCII
// units, pairs and lone surrogates sit on either side of a block's edge must
// come out as the appending form gives them, within the room promised.
TEST(CodePages, Utf8WrittenInPlaceIsWhatAppendingGives) {
    const std::u16string high(1, char16_t(0xD83D)), low(1, char16_t(0xDE00));
    std::vector<std::u16string> texts = {
        std::u16string(u"\0\x7f\x80", 3), u"\u07ff\u0800\uffff", u"1234567" + high + low + u"after",
        u"12345678" + high + low,         u"1234567" + high,     low + u"1234567" + high + u"x",
        std::u16string(300, u'\u00fc')};
    for (std::size_t at = 0; at < 17; ++at)
        texts.push_back(std::u16string(at, u'-') + u"\u00e9" + std::u16string(17 - at, u'+'));
    for (const std::u16string& text : texts) {
        std::string expected;
        tervane::locale::AppendUtf8(expected, text);
        const std::size_t room = text.size() * tervane::locale::kUtf8PerUnit;
        std::string buffer(room + 16, '#');
        char* end = tervane::locale::WriteUtf8(buffer.data(), text);
        ASSERT_LE(end, buffer.data() + room) << Hex(text);
        EXPECT_EQ(std::string(buffer.data(), end), expected) << Hex(text);
        EXPECT_EQ(buffer.substr(room), std::string(16, '#')) << Hex(text);
    }
}

} // namespace
