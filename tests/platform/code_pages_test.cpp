#include "platform/locale/code_pages.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <thread>
#include <vector>

#include "platform/locale/utf8.h"
#include "platform/win32/last_error.h"

namespace {

std::u16string ToWide(const std::string& text, UINT codePage, DWORD flags = 0) {
    char16_t buffer[64];
    SetLastError(0);
    const int n = MultiByteToWideChar(codePage, flags, text.data(), static_cast<int>(text.size()),
                                      buffer, 64);
    return std::u16string(buffer, static_cast<std::size_t>(n));
}

std::string Hex(std::u16string_view text) {
    std::string out;
    char unit[8];
    for (const char16_t c : text) {
        std::snprintf(unit, sizeof unit, "%s%04x", out.empty() ? "" : " ", unsigned{c});
        out += unit;
    }
    return out;
}

std::string Hex(std::string_view text) {
    std::string out;
    char unit[8];
    for (const char c : text) {
        std::snprintf(unit, sizeof unit, "%s%02x", out.empty() ? "" : " ",
                      unsigned{static_cast<unsigned char>(c)});
        out += unit;
    }
    return out;
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
        {CP_UTF8,
         "\xE0\x80\x80"
         "A",
         "fffd fffd 0041"}, // overlong
        {CP_UTF8,
         "\xE2\x82"
         "A",
         "fffd 0041"}, // cut short before a letter
        {CP_UTF8,
         "\x80"
         "A",
         "fffd 0041"},
        {CP_UTF8, "\xF0\x9F\x98", "fffd"}, // cut short at the end
        {CP_ACP, "\xC3\xB6", "00f6"},
        {932, "\x81", "30fb"}, // a lead byte at the end
        {932, "A\x81", "0041 30fb"},
        {932, "\x81\x20", "30fb"},                      // a bad trail byte goes with its lead
        {932, std::string("\x81\x00", 2), "30fb 0000"}, // but a NUL does not
        {936, "\x81", "003f"},
        {936, "\x81\x20", "003f"},
        {936, "\xAA\xA1\xA1\x40", "e000 e4c6"}, // user-defined areas
        {950, "\x81\x20", "003f"},
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
        {1252, u"\u0081", "81", FALSE},
        {1252, u"\U0001F600", "3f 3f", TRUE}, // each half of a pair
        // No best fit: Windows would give 'A' for U+0100.
        {1250, u"\u0100", "3f", TRUE},
        {932, u"A\u3042\\", "41 82 a0 5c", FALSE},
        {932, u"\u20AC", "3f", TRUE},
        {936, u"\u20AC\u4E00", "80 d2 bb", FALSE}, // the euro's own byte, not its pair
        {1258, u"Vi\u00EA\u0323t", "56 69 ea f2 74", FALSE},
        {1258, u"\u1EC7", "3f", TRUE}, // precomposed forms have no byte
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
    const std::pair<std::u16string, std::string> utf8[] = {
        {u"\xD800"
         u"A",
         "ef bf bd 41"},
        {u"\xDC00", "ef bf bd"},
        {u"\xD83D\xDE00", "f0 9f 98 80"},
    };
    for (const auto& [units, bytes] : utf8) {
        EXPECT_EQ(Hex(tervane::Narrow(units, CP_UTF8)), bytes);
    }
    char buffer[8];
    const char16_t euro[] = u"\u20AC";
    BOOL used = FALSE;
    EXPECT_EQ(WideCharToMultiByte(1252, 0, u"\u3042", 1, buffer, 8, "#", &used), 1);
    EXPECT_EQ(buffer[0], '#');
    EXPECT_TRUE(used);
    EXPECT_EQ(WideCharToMultiByte(932, 0, euro, 1, buffer, 8, "\x81\x48", &used), 2);
    EXPECT_EQ(Hex(std::string_view(buffer, 2)), "81 48"); // a two-byte default in a DBCS page
}

// Real text through the whole-string helpers, both ways.
TEST(CodePages, RoundTripsOfRealText) {
    struct Case {
        UINT codePage;
        std::u16string text;
        std::string bytes;
    };
    const Case cases[] = {
        {932, u"\u65E5\u672C\u8A9E\u30C6\u30AD\u30B9\u30C8 \\",
         "\x93\xFA\x96\x7B\x8C\xEA\x83\x65\x83\x4C\x83\x58\x83\x67 \\"},
        {936, u"\u4E2D\u6587 \u20AC", "\xD6\xD0\xCE\xC4 \x80"},
        {1252, u"Gr\u00FC\u00DFe \u20AC\u2026",
         "Gr\xFC\xDF"
         "e \x80\x85"},
        {1258, u"Vi\u00EA\u0323t", "Vi\xEA\xF2t"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.codePage);
        EXPECT_EQ(Hex(tervane::Narrow(c.text, c.codePage)), Hex(c.bytes));
        EXPECT_EQ(Hex(tervane::Widen(c.bytes, c.codePage)), Hex(c.text));
    }
    EXPECT_EQ(tervane::Widen("\xC3\xA9t\xC3\xA9"), u"\u00E9t\u00E9"); // CP_ACP is UTF-8
    EXPECT_EQ(tervane::Narrow(u"\u00E9t\u00E9"), "\xC3\xA9t\xC3\xA9");
}

TEST(CodePages, SizesAndFailures) {
    char16_t wide[8];
    char narrow[8];
    const auto run = [](int result) { return std::make_pair(result, GetLastError()); };
    SetLastError(0);
    EXPECT_EQ(run(MultiByteToWideChar(1252, 0, "abc", -1, nullptr, 0)), std::make_pair(4, 0u));
    EXPECT_EQ(run(MultiByteToWideChar(1252, 0, "abc", -1, wide, 4)), std::make_pair(4, 0u));
    EXPECT_EQ(wide[3], u'\0');
    EXPECT_EQ(run(MultiByteToWideChar(1252, 0, "abc", -1, wide, 3)),
              std::make_pair(0, ERROR_INSUFFICIENT_BUFFER));
    SetLastError(0);
    EXPECT_EQ(run(MultiByteToWideChar(932, 0, "\x82\xA0", 2, nullptr, 0)), std::make_pair(1, 0u));
    EXPECT_EQ(run(MultiByteToWideChar(1252, 0, "abc", 0, wide, 8)),
              std::make_pair(0, ERROR_INVALID_PARAMETER));
    EXPECT_EQ(run(MultiByteToWideChar(1252, 0, nullptr, 3, wide, 8)),
              std::make_pair(0, ERROR_INVALID_PARAMETER));
    EXPECT_EQ(run(MultiByteToWideChar(12345, 0, "abc", 3, wide, 8)),
              std::make_pair(0, ERROR_INVALID_PARAMETER));
    EXPECT_EQ(run(MultiByteToWideChar(CP_UTF8, MB_PRECOMPOSED, "abc", 3, wide, 8)),
              std::make_pair(0, ERROR_INVALID_FLAGS));
    SetLastError(0);
    EXPECT_EQ(run(MultiByteToWideChar(CP_ACP, MB_PRECOMPOSED, "abc", 3, wide, 8)),
              std::make_pair(3, 0u));
    EXPECT_EQ(run(MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, "a\xC3", 2, wide, 8)),
              std::make_pair(0, ERROR_NO_UNICODE_TRANSLATION));
    EXPECT_EQ(run(MultiByteToWideChar(932, MB_ERR_INVALID_CHARS, "\x81", 1, wide, 8)),
              std::make_pair(0, ERROR_NO_UNICODE_TRANSLATION));

    SetLastError(0);
    EXPECT_EQ(run(WideCharToMultiByte(1252, 0, u"ab", -1, nullptr, 0, nullptr, nullptr)),
              std::make_pair(3, 0u));
    EXPECT_EQ(run(WideCharToMultiByte(CP_UTF8, 0, u"\u20AC", -1, nullptr, 0, nullptr, nullptr)),
              std::make_pair(4, 0u));
    EXPECT_EQ(run(WideCharToMultiByte(CP_UTF8, 0, u"\u20AC", 1, narrow, 2, nullptr, nullptr)),
              std::make_pair(0, ERROR_INSUFFICIENT_BUFFER));
    // A two-byte character never leaves its lead byte alone at the end.
    EXPECT_EQ(run(WideCharToMultiByte(932, 0, u"A\u3042", 2, narrow, 2, nullptr, nullptr)),
              std::make_pair(0, ERROR_INSUFFICIENT_BUFFER));
    BOOL used = FALSE;
    EXPECT_EQ(run(WideCharToMultiByte(CP_UTF8, 0, u"a", 1, narrow, 8, nullptr, &used)),
              std::make_pair(0, ERROR_INVALID_PARAMETER));
    EXPECT_EQ(run(WideCharToMultiByte(CP_UTF8, WC_ERR_INVALID_CHARS, u"\xD800", 1, narrow, 8,
                                      nullptr, nullptr)),
              std::make_pair(0, ERROR_NO_UNICODE_TRANSLATION));
    EXPECT_EQ(
        run(WideCharToMultiByte(1252, WC_ERR_INVALID_CHARS, u"a", 1, narrow, 8, nullptr, nullptr)),
        std::make_pair(0, ERROR_INVALID_FLAGS));
    EXPECT_EQ(run(WideCharToMultiByte(42424, 0, u"a", 1, narrow, 8, nullptr, nullptr)),
              std::make_pair(0, ERROR_INVALID_PARAMETER));
    EXPECT_EQ(tervane::Widen("abc", 42424), u"");
}

TEST(CodePages, LeadBytes) {
    struct Case {
        UINT codePage;
        BYTE byte;
        BOOL lead;
    };
    const Case cases[] = {
        {932, 0x80, FALSE},  {932, 0xA0, FALSE},     {932, 0xFD, FALSE},
        {936, 0x80, FALSE},  {936, 0xFF, FALSE},     {950, 0x40, FALSE},
        {1252, 0x81, FALSE}, {CP_UTF8, 0xC3, FALSE}, {CP_ACP, 0xE3, FALSE},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(IsDBCSLeadByteEx(c.codePage, c.byte), c.lead) << c.codePage << " " << int{c.byte};
    }
    for (int b = 0; b < 256; ++b)
        EXPECT_FALSE(IsDBCSLeadByte(static_cast<BYTE>(b)));
    EXPECT_EQ(GetACP(), 65001u);
    EXPECT_EQ(GetOEMCP(), 65001u);
}

// Tables are built once by whichever thread asks first and then read by all.
TEST(CodePages, ThreadsShareTheTables) {
    const std::pair<UINT, std::string> samples[] = {
        {932, "\x93\xFA\x96\x7B"}, {936, "\xD6\xD0"}, {949, "\xC7\xD1"}, {1251, "\xCF\xF0"}};
    std::vector<std::u16string> results(8);
    std::vector<std::thread> threads;
    for (std::size_t t = 0; t < results.size(); ++t) {
        threads.emplace_back([&, t] {
            for (int round = 0; round < 50; ++round) {
                for (const auto& [codePage, bytes] : samples)
                    results[t] += tervane::Widen(bytes, codePage);
            }
        });
    }
    for (auto& thread : threads)
        thread.join();
    std::u16string expected;
    for (int round = 0; round < 50; ++round)
        expected += u"\u65E5\u672C\u4E2D\uD55C\u041F\u0440";
    for (const auto& result : results)
        EXPECT_EQ(result, expected);
}

// The whole-string helpers take a shorter road for UTF-8 and must land where
// the conversion calls do, ill-formed input included.
TEST(CodePages, WholeStringUtf8IsWhatTheCallsGive) {
    const std::u16string wide[] = {
        u"caf\u00e9 \u65e5\U0001F600", std::u16string(1, char16_t(0xD800)) + u"lone high",
        u"ab" + std::u16string(1, char16_t(0xDC00)), std::u16string(u"nul\0inside", 11),
        std::u16string(300, u'\u00fc')};
    for (const std::u16string& text : wide) {
        const int length = static_cast<int>(text.size());
        const int needed =
            WideCharToMultiByte(CP_UTF8, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
        std::string expected(static_cast<std::size_t>(needed), '\0');
        WideCharToMultiByte(CP_UTF8, 0, text.data(), length, expected.data(), needed, nullptr,
                            nullptr);
        EXPECT_EQ(tervane::Narrow(text, CP_UTF8), expected) << Hex(text);
        EXPECT_EQ(tervane::Narrow(text), expected) << Hex(text);
    }
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
    std::vector<std::u16string> texts = {u"",
                                         u"exactly8",
                                         std::u16string(u"\0\x7f\x80", 3),
                                         u"\u07ff\u0800\uffff",
                                         u"1234567" + high + low + u"after",
                                         u"12345678" + high + low,
                                         u"1234567" + high,
                                         low + u"1234567" + high + u"x",
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
