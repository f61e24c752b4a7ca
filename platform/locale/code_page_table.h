#pragma once
// One Windows code page as lookup tables, built once per process from glibc
// iconv. Conversions through the tables follow Windows exactly where iconv
// and Windows agree, and never depend on iconv's error handling or its state.
#include <cstdint>
#include <vector>

#include "platform/win32/types.h"

namespace tervane::locale {

class CodePageTable {
public:
    static constexpr char16_t kUnmapped = 0xFFFF; // a noncharacter: no code page decodes to it
    static constexpr std::uint16_t kNoBytes = 0xFFFF;

    // Null when the code page is not one we support or iconv lacks it.
    static const CodePageTable* Find(UINT codePage);

    UINT CodePage() const { return codePage_; }
    bool IsDbcs() const { return dbcs_; }
    bool IsLeadByte(BYTE b) const { return lead_[b]; }
    // What Windows gives for bytes it cannot decode: U+30FB in 932, '?' elsewhere.
    char16_t DefaultWide() const { return defaultWide_; }

    char16_t Single(BYTE b) const { return decode_[b]; }
    char16_t Pair(BYTE lead, BYTE trail) const {
        return decode_[256 + (static_cast<std::size_t>(lead) << 8) + trail];
    }
    // One byte, or a lead byte in the high half and a trail byte in the low one.
    std::uint16_t Encode(char16_t c) const { return encode_[c]; }

private:
    explicit CodePageTable(UINT codePage) : codePage_(codePage) {}
    bool Load(const char* iconvName);

    UINT codePage_;
    bool dbcs_ = false;
    char16_t defaultWide_ = u'?';
    bool lead_[256] = {};
    std::vector<char16_t> decode_;
    std::vector<std::uint16_t> encode_;
};

} // namespace tervane::locale
