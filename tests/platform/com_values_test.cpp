// GUID forms, BSTR lengths and the HRESULT helpers.
#include <gtest/gtest.h>

#include "platform/com/bstr.h"
#include "platform/com/guid.h"
#include "platform/com/hresult.h"

namespace tervane {
namespace {

TEST(Guid, ParsesAndPrintsTheRegistryFormOnly) {
    auto guid = ParseGuid("{9b05b22e-3c20-4737-b7b2-da6bb89413e7}");
    ASSERT_TRUE(guid);
    EXPECT_EQ(GuidToString(*guid), "{9B05B22E-3C20-4737-B7B2-DA6BB89413E7}");
    GUID g = MakeGuid("{01234567-89AB-CDEF-0123-456789ABCDEF}");
    EXPECT_EQ(GuidToWideString(g), u"{01234567-89AB-CDEF-0123-456789ABCDEF}");

    const char* bad[] = {
        "9B05B22E-3C20-4737-B7B2-DA6BB89413E7",    // no braces
        " {9B05B22E-3C20-4737-B7B2-DA6BB89413E7}", // white space
        "{9B05B22E-3C20-4737-B7B2-DA6BB89413E77}", // long
        "{9B05B22E-3C20-4737-B7B2-DA6BB89413G7}",  // not hex
    };
    for (const char* text : bad)
        EXPECT_FALSE(ParseGuid(text)) << text;
}

// Exact lengths, termination and odd byte lengths are the reuse test's.
TEST(Bstr, NullsAndFirstZerosAndHugeLengths) {
    BSTR cut = SysAllocString(u"ab\0cd"); // stops at the first zero
    EXPECT_EQ(SysStringLen(cut), 2u);
    SysFreeString(cut);
    EXPECT_EQ(SysAllocString(nullptr), nullptr);
    EXPECT_EQ(SysStringLen(nullptr), 0u);
    // Lengths whose block would not fit the 32-bit prefix are refused.
    EXPECT_EQ(SysAllocStringByteLen(nullptr, 0xFFFFFFFFu), nullptr);
    EXPECT_EQ(SysAllocStringLen(nullptr, 0x80000000u), nullptr);
}

// Freed strings are kept and handed out again, and a reallocation that fits
// stays in place: lengths around the kept sizes must still come back exact,
// terminated, and zeroed where no source was given.
TEST(Bstr, ReusedAndReallocatedStringsAreExact) {
    const UINT lengths[] = {0, 1, 9, 10, 11, 25, 26, 27, 57, 58, 59, 121, 122, 123, 400};
    for (UINT length : lengths) {
        SCOPED_TRACE(length);
        std::u16string text(length, u'q');
        for (UINT i = 0; i < length; ++i)
            text[i] = static_cast<char16_t>(u'a' + i % 26);
        // Dirty blocks of every size go back first.
        for (UINT dirty : lengths)
            SysFreeString(SysAllocStringLen(std::u16string(dirty, u'#').data(), dirty));

        BSTR blank = SysAllocStringLen(nullptr, length);
        ASSERT_NE(blank, nullptr);
        EXPECT_EQ(std::u16string(blank, SysStringLen(blank)), std::u16string(length, u'\0'));
        EXPECT_EQ(blank[length], u'\0');

        for (UINT other : lengths) {
            ASSERT_TRUE(SysReAllocStringLen(&blank, text.data(), length));
            ASSERT_TRUE(SysReAllocStringLen(&blank, nullptr, other));
            EXPECT_EQ(SysStringLen(blank), other);
            EXPECT_EQ(std::u16string(blank, other), std::u16string(other, u'\0'));
            ASSERT_TRUE(SysReAllocStringLen(&blank, text.data(), length));
            EXPECT_EQ(std::u16string(blank, SysStringLen(blank)), text);
            EXPECT_EQ(blank[length], u'\0');
        }
        // Shrinking in place from the string's own tail.
        if (length > 2) {
            ASSERT_TRUE(SysReAllocStringLen(&blank, blank + 2, length - 2));
            EXPECT_EQ(std::u16string(blank, SysStringLen(blank)), text.substr(2));
            EXPECT_EQ(blank[length - 2], u'\0');
        }
        SysFreeString(blank);

        BSTR odd =
            SysAllocStringByteLen(reinterpret_cast<const char*>(text.data()), 2 * length + 1);
        ASSERT_NE(odd, nullptr);
        EXPECT_EQ(SysStringByteLen(odd), 2 * length + 1);
        EXPECT_EQ(reinterpret_cast<const char*>(odd)[2 * length + 1], '\0');
        SysFreeString(odd);
    }
}

} // namespace
} // namespace tervane
