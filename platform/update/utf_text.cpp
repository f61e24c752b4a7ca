#include "platform/update/utf_text.h"

#include <clocale>
#include <cwctype>
#include <locale.h>

namespace tervane::update {

namespace {

constexpr char32_t kReplacement = 0xFFFD;

void AppendUtf16(std::u16string& out, char32_t c) {
    if (c < 0x10000) {
        out.push_back(static_cast<char16_t>(c));
    } else {
        c -= 0x10000;
        out.push_back(static_cast<char16_t>(0xD800 + (c >> 10)));
        out.push_back(static_cast<char16_t>(0xDC00 + (c & 0x3FF)));
    }
}

void AppendUtf8(std::string& out, char32_t c) {
    if (c < 0x80) {
        out.push_back(static_cast<char>(c));
    } else if (c < 0x800) {
        out.push_back(static_cast<char>(0xC0 | (c >> 6)));
        out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
    } else if (c < 0x10000) {
        out.push_back(static_cast<char>(0xE0 | (c >> 12)));
        out.push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3F)));
        out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
    } else {
        out.push_back(static_cast<char>(0xF0 | (c >> 18)));
        out.push_back(static_cast<char>(0x80 | ((c >> 12) & 0x3F)));
        out.push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3F)));
        out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
    }
}

// The case table of the C.UTF-8 locale, independent of the user's locale.
locale_t CaseLocale() {
    static locale_t locale = newlocale(LC_CTYPE_MASK, "C.UTF-8", static_cast<locale_t>(0));
    return locale;
}

} // namespace

std::u16string Utf8ToUtf16(std::string_view text) {
    std::u16string out;
    out.reserve(text.size());
    std::size_t i = 0;
    while (i < text.size()) {
        auto lead = static_cast<unsigned char>(text[i]);
        std::size_t length = lead < 0x80         ? 1
                             : (lead >> 5) == 6  ? 2
                             : (lead >> 4) == 14 ? 3
                             : (lead >> 3) == 30 ? 4
                                                 : 0;
        if (length == 0 || length > text.size() - i) {
            out.push_back(static_cast<char16_t>(kReplacement));
            ++i;
            continue;
        }
        char32_t c = length == 1 ? lead : lead & (0x7F >> length);
        bool valid = true;
        for (std::size_t k = 1; k < length; ++k) {
            auto next = static_cast<unsigned char>(text[i + k]);
            if ((next & 0xC0) != 0x80) {
                valid = false;
                break;
            }
            c = (c << 6) | (next & 0x3F);
        }
        // Overlong forms, surrogates and values past U+10FFFF are not characters.
        static constexpr char32_t kMinimum[] = {0, 0, 0x80, 0x800, 0x10000};
        if (!valid || c < kMinimum[length] || c > 0x10FFFF || (c >= 0xD800 && c <= 0xDFFF)) {
            out.push_back(static_cast<char16_t>(kReplacement));
            ++i;
            continue;
        }
        AppendUtf16(out, c);
        i += length;
    }
    return out;
}

std::string Utf16ToUtf8(std::u16string_view text) {
    std::string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        char32_t c = text[i];
        if (c >= 0xD800 && c <= 0xDBFF && i + 1 < text.size() && text[i + 1] >= 0xDC00 &&
            text[i + 1] <= 0xDFFF) {
            c = 0x10000 + ((c - 0xD800) << 10) + (text[i + 1] - 0xDC00);
            ++i;
        } else if (c >= 0xD800 && c <= 0xDFFF) {
            c = kReplacement;
        }
        AppendUtf8(out, c);
    }
    return out;
}

std::u16string UpcaseUtf16(std::u16string_view text) {
    std::u16string out(text);
    locale_t locale = CaseLocale();
    for (char16_t& unit : out) {
        if (unit < 0x80) {
            if (unit >= u'a' && unit <= u'z')
                unit = static_cast<char16_t>(unit - 0x20);
            continue;
        }
        if ((unit >= 0xD800 && unit <= 0xDFFF) || locale == static_cast<locale_t>(0))
            continue;
        auto upper = static_cast<char32_t>(towupper_l(static_cast<wint_t>(unit), locale));
        if (upper < 0x10000 && !(upper >= 0xD800 && upper <= 0xDFFF))
            unit = static_cast<char16_t>(upper);
    }
    return out;
}

} // namespace tervane::update
