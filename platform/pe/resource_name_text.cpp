#include "platform/pe/resource_name_text.h"

#include <cwctype>
#include <locale.h>

#include "platform/locale/utf8.h"

namespace tervane::pe {

namespace {

void AppendUtf8(std::string& out, char32_t c) {
    char bytes[4];
    out.append(bytes, static_cast<std::size_t>(locale::EncodeUtf8(c, bytes)));
}

bool IsHigh(char32_t u) {
    return u >= 0xD800 && u <= 0xDBFF;
}
bool IsLow(char32_t u) {
    return u >= 0xDC00 && u <= 0xDFFF;
}

// The C.UTF-8 locale carries the full case table whatever the process's locale is.
locale_t CaseLocale() {
    static locale_t locale = newlocale(LC_CTYPE_MASK, "C.UTF-8", static_cast<locale_t>(0));
    return locale;
}

} // namespace

std::string Utf16ToUtf8(std::u16string_view text) {
    std::string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        char32_t u = text[i];
        if (IsHigh(u) && i + 1 < text.size() && IsLow(text[i + 1])) {
            AppendUtf8(out, 0x10000 + ((u - 0xD800) << 10) + (text[i + 1] - 0xDC00));
            ++i;
        } else if (IsHigh(u) || IsLow(u)) {
            AppendUtf8(out, 0xFFFD);
        } else {
            AppendUtf8(out, u);
        }
    }
    return out;
}

std::u16string Utf8ToUtf16(std::string_view text) {
    std::u16string out;
    out.reserve(text.size());
    std::size_t i = 0;
    while (i < text.size()) {
        auto b = static_cast<unsigned char>(text[i]);
        std::size_t length = b < 0x80         ? 1
                             : (b >> 5) == 6  ? 2
                             : (b >> 4) == 14 ? 3
                             : (b >> 3) == 30 ? 4
                                              : 0;
        char32_t c = length == 1   ? b
                     : length == 2 ? (b & 0x1F)
                     : length == 3 ? (b & 0x0F)
                                   : (b & 0x07);
        bool valid = length != 0;
        for (std::size_t k = 1; valid && k < length; ++k) {
            if (i + k >= text.size() || (static_cast<unsigned char>(text[i + k]) & 0xC0) != 0x80) {
                valid = false;
                length = k; // the byte that breaks the sequence starts the next one
            } else {
                c = (c << 6) | (static_cast<unsigned char>(text[i + k]) & 0x3F);
            }
        }
        // Overlong forms, surrogates and values past U+10FFFF are not UTF-8.
        static constexpr char32_t kMin[] = {0, 0, 0x80, 0x800, 0x10000};
        if (valid && (c < kMin[length] || (c >= 0xD800 && c <= 0xDFFF) || c > 0x10FFFF))
            valid = false;
        if (!valid) {
            out += u'\uFFFD';
            i += length == 0 ? 1 : length;
            continue;
        }
        if (c >= 0x10000) {
            c -= 0x10000;
            out += static_cast<char16_t>(0xD800 + (c >> 10));
            out += static_cast<char16_t>(0xDC00 + (c & 0x3FF));
        } else {
            out += static_cast<char16_t>(c);
        }
        i += length;
    }
    return out;
}

std::u16string UpcaseName(std::u16string_view name) {
    std::u16string out(name);
    locale_t locale = CaseLocale();
    for (char16_t& unit : out) {
        if (unit < 0x80) {
            if (unit >= u'a' && unit <= u'z')
                unit = static_cast<char16_t>(unit - 0x20);
        } else if (!IsHigh(unit) && !IsLow(unit) && locale) {
            wint_t upper = towupper_l(static_cast<wint_t>(unit), locale);
            // A mapping that leaves the basic plane can't replace one unit.
            if (upper < 0x10000)
                unit = static_cast<char16_t>(upper);
        }
    }
    return out;
}

} // namespace tervane::pe
