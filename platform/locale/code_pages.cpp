#include "platform/locale/code_pages.h"

#include <climits>
#include <string_view>

#include "platform/locale/code_page_table.h"
#include "platform/locale/utf8.h"
#include "platform/win32/last_error.h"

namespace {

using tervane::locale::CodePageTable;

constexpr UINT kProcessCodePage = CP_UTF8;

bool IsProcessAlias(UINT codePage) {
    return codePage == CP_ACP || codePage == CP_OEMCP || codePage == CP_THREAD_ACP;
}

UINT Resolve(UINT codePage) {
    return IsProcessAlias(codePage) ? kProcessCodePage : codePage;
}

// Counts what a conversion produces and writes it while there is room; a
// capacity of 0 only measures, as Win32's size queries do.
template <typename T> class Output {
public:
    Output(T* dst, int capacity) : dst_(dst), capacity_(capacity) {}
    void Put(T unit) {
        if (count_ == INT_MAX) { // only a measure of a huge input gets here
            overflow_ = true;
            return;
        }
        if (capacity_ > 0) {
            if (count_ >= capacity_) {
                overflow_ = true;
                return;
            }
            dst_[count_] = unit;
        }
        ++count_;
    }
    bool Room(int units) const { return capacity_ == 0 || capacity_ - count_ >= units; }
    void MarkOverflow() { overflow_ = true; }
    // Win32's result: the count, or 0 with the last error set.
    int Finish() const {
        if (overflow_) {
            SetLastError(ERROR_INSUFFICIENT_BUFFER);
            return 0;
        }
        return count_;
    }

private:
    T* dst_;
    int capacity_;
    int count_ = 0;
    bool overflow_ = false;
};

int Fail(DWORD error) {
    SetLastError(error);
    return 0;
}

int Utf8ToWide(std::string_view src, DWORD flags, Output<char16_t>& out) {
    std::size_t pos = 0;
    while (pos < src.size()) {
        if (static_cast<unsigned char>(src[pos]) < 0x80) {
            out.Put(static_cast<char16_t>(src[pos++]));
            continue;
        }
        const char32_t c = tervane::locale::DecodeUtf8(src, pos);
        if (c == tervane::locale::kUtf8Invalid) {
            if (flags & MB_ERR_INVALID_CHARS)
                return Fail(ERROR_NO_UNICODE_TRANSLATION);
            out.Put(0xFFFD);
        } else if (c >= 0x10000) {
            out.Put(static_cast<char16_t>(0xD800 + ((c - 0x10000) >> 10)));
            out.Put(static_cast<char16_t>(0xDC00 + ((c - 0x10000) & 0x3FF)));
        } else {
            out.Put(static_cast<char16_t>(c));
        }
    }
    return out.Finish();
}

int TableToWide(const CodePageTable& table, std::string_view src, DWORD flags,
                Output<char16_t>& out) {
    for (std::size_t i = 0; i < src.size(); ++i) {
        const auto b = static_cast<BYTE>(src[i]);
        char16_t c;
        if (table.IsLeadByte(b)) {
            // A lead byte takes the next byte with it unless that is a NUL or missing.
            if (i + 1 < src.size() && src[i + 1] != '\0') {
                c = table.Pair(b, static_cast<BYTE>(src[++i]));
            } else {
                c = CodePageTable::kUnmapped;
            }
        } else {
            c = table.Single(b);
        }
        if (c == CodePageTable::kUnmapped) {
            if (flags & MB_ERR_INVALID_CHARS)
                return Fail(ERROR_NO_UNICODE_TRANSLATION);
            c = table.DefaultWide();
        }
        out.Put(c);
    }
    return out.Finish();
}

int WideToUtf8(std::u16string_view src, DWORD flags, Output<char>& out) {
    for (std::size_t i = 0; i < src.size(); ++i) {
        char32_t c = src[i];
        if (c < 0x80) {
            out.Put(static_cast<char>(c));
            continue;
        }
        if (c >= 0xD800 && c <= 0xDBFF && i + 1 < src.size() && src[i + 1] >= 0xDC00 &&
            src[i + 1] <= 0xDFFF) {
            c = 0x10000 + ((c - 0xD800) << 10) + (src[++i] - 0xDC00);
        } else if (c >= 0xD800 && c <= 0xDFFF) {
            if (flags & WC_ERR_INVALID_CHARS)
                return Fail(ERROR_NO_UNICODE_TRANSLATION);
            c = 0xFFFD;
        }
        char bytes[4];
        const int length = tervane::locale::EncodeUtf8(c, bytes);
        for (int k = 0; k < length; ++k)
            out.Put(bytes[k]);
    }
    return out.Finish();
}

// Windows' best-fit replacements (U+0100 to 'A' in 1252) are not known here:
// every character without an exact form becomes the default character, as
// with WC_NO_BEST_FIT_CHARS.
int WideToTable(const CodePageTable& table, std::u16string_view src, const char* defaultChar,
                BOOL* usedDefaultChar, Output<char>& out) {
    std::uint16_t fallback = '?';
    if (defaultChar != nullptr) {
        const auto first = static_cast<BYTE>(defaultChar[0]);
        fallback = first;
        if (table.IsLeadByte(first) && defaultChar[1] != '\0') {
            fallback = static_cast<std::uint16_t>((first << 8) | static_cast<BYTE>(defaultChar[1]));
        }
    }
    bool used = false;
    for (const char16_t c : src) {
        std::uint16_t bytes = table.Encode(c);
        if (bytes == CodePageTable::kNoBytes) {
            bytes = fallback;
            used = true;
        }
        if (bytes > 0xFF) {
            if (!out.Room(2)) {
                out.MarkOverflow();
                break;
            }
            out.Put(static_cast<char>(bytes >> 8));
        }
        out.Put(static_cast<char>(bytes & 0xFF));
    }
    if (usedDefaultChar != nullptr)
        *usedDefaultChar = used ? TRUE : FALSE;
    return out.Finish();
}

} // namespace

UINT GetACP() {
    return kProcessCodePage;
}
UINT GetOEMCP() {
    return kProcessCodePage;
}

BOOL IsValidCodePage(UINT codePage) {
    return codePage == CP_UTF8 || CodePageTable::Find(codePage) != nullptr;
}

BOOL IsDBCSLeadByteEx(UINT codePage, BYTE testChar) {
    const UINT resolved = Resolve(codePage);
    if (resolved == CP_UTF8)
        return FALSE;
    const CodePageTable* table = CodePageTable::Find(resolved);
    if (table == nullptr) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    return table->IsLeadByte(testChar) ? TRUE : FALSE;
}

BOOL IsDBCSLeadByte(BYTE testChar) {
    return IsDBCSLeadByteEx(CP_ACP, testChar);
}

int MultiByteToWideChar(UINT codePage, DWORD flags, const char* src, int srcLen, char16_t* dst,
                        int dstLen) {
    if (src == nullptr || srcLen == 0 || srcLen < -1 || dstLen < 0 ||
        (dstLen > 0 && dst == nullptr)) {
        return Fail(ERROR_INVALID_PARAMETER);
    }
    constexpr DWORD kKnown =
        MB_PRECOMPOSED | MB_COMPOSITE | MB_USEGLYPHCHARS | MB_ERR_INVALID_CHARS;
    if ((flags & ~kKnown) != 0 || ((flags & MB_PRECOMPOSED) && (flags & MB_COMPOSITE))) {
        return Fail(ERROR_INVALID_FLAGS);
    }
    const std::string_view text(src, srcLen == -1 ? std::char_traits<char>::length(src) + 1
                                                  : static_cast<std::size_t>(srcLen));
    Output<char16_t> out(dst, dstLen);
    const UINT resolved = Resolve(codePage);
    if (resolved == CP_UTF8) {
        // UTF-8 takes no composition flags; through CP_ACP it stands in for an
        // ANSI code page, whose callers pass MB_PRECOMPOSED freely.
        if (!IsProcessAlias(codePage) && (flags & ~MB_ERR_INVALID_CHARS) != 0) {
            return Fail(ERROR_INVALID_FLAGS);
        }
        return Utf8ToWide(text, flags, out);
    }
    const CodePageTable* table = CodePageTable::Find(resolved);
    if (table == nullptr)
        return Fail(ERROR_INVALID_PARAMETER);
    return TableToWide(*table, text, flags, out);
}

int WideCharToMultiByte(UINT codePage, DWORD flags, const char16_t* src, int srcLen, char* dst,
                        int dstLen, const char* defaultChar, BOOL* usedDefaultChar) {
    if (src == nullptr || srcLen == 0 || srcLen < -1 || dstLen < 0 ||
        (dstLen > 0 && dst == nullptr)) {
        return Fail(ERROR_INVALID_PARAMETER);
    }
    const std::u16string_view text(src, srcLen == -1 ? std::char_traits<char16_t>::length(src) + 1
                                                     : static_cast<std::size_t>(srcLen));
    Output<char> out(dst, dstLen);
    const UINT resolved = Resolve(codePage);
    if (resolved == CP_UTF8) {
        if (defaultChar != nullptr || usedDefaultChar != nullptr) {
            return Fail(ERROR_INVALID_PARAMETER);
        }
        if ((flags & ~WC_ERR_INVALID_CHARS) != 0)
            return Fail(ERROR_INVALID_FLAGS);
        return WideToUtf8(text, flags, out);
    }
    constexpr DWORD kKnown = WC_COMPOSITECHECK | WC_DISCARDNS | WC_SEPCHARS | WC_DEFAULTCHAR |
                             WC_ERR_INVALID_CHARS | WC_NO_BEST_FIT_CHARS;
    // Refusing invalid characters is for UTF-8 alone.
    if ((flags & ~kKnown) != 0 || (flags & WC_ERR_INVALID_CHARS) != 0)
        return Fail(ERROR_INVALID_FLAGS);
    const CodePageTable* table = CodePageTable::Find(resolved);
    if (table == nullptr)
        return Fail(ERROR_INVALID_PARAMETER);
    return WideToTable(*table, text, defaultChar, usedDefaultChar, out);
}

namespace tervane {

std::u16string Widen(std::string_view text, UINT codePage) {
    if (text.empty() || text.size() > static_cast<std::size_t>(INT_MAX))
        return {};
    // The conversion's own result, in one pass without measuring first.
    if (Resolve(codePage) == CP_UTF8) {
        // Most texts are short: converted on the stack, copied once.
        constexpr std::size_t kOnStack = 256;
        if (text.size() <= kOnStack) {
            char16_t units[kOnStack];
            return std::u16string(units, locale::WriteUtf16(units, text));
        }
        std::u16string result;
        locale::AppendUtf16(result, text);
        return result;
    }
    const int length = static_cast<int>(text.size());
    const int needed = MultiByteToWideChar(codePage, 0, text.data(), length, nullptr, 0);
    if (needed <= 0)
        return {};
    std::u16string result(static_cast<std::size_t>(needed), u'\0');
    MultiByteToWideChar(codePage, 0, text.data(), length, result.data(), needed);
    return result;
}

std::string Narrow(std::u16string_view text, UINT codePage) {
    // A third of INT_MAX: three bytes a unit must still count in an int.
    if (text.empty() || text.size() > static_cast<std::size_t>(INT_MAX / 3))
        return {};
    if (Resolve(codePage) == CP_UTF8) {
        std::string result;
        result.reserve(text.size());
        locale::AppendUtf8(result, text);
        return result;
    }
    const int length = static_cast<int>(text.size());
    const int needed =
        WideCharToMultiByte(codePage, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
    if (needed <= 0)
        return {};
    std::string result(static_cast<std::size_t>(needed), '\0');
    WideCharToMultiByte(codePage, 0, text.data(), length, result.data(), needed, nullptr, nullptr);
    return result;
}

} // namespace tervane
