#include "platform/locale/utf8.h"

#include <algorithm>
#include <cstddef>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace tervane::locale {

char32_t DecodeUtf8(std::string_view text, std::size_t& pos) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char first = byte(pos++);
    if (first < 0x80)
        return first;
    int following;
    char32_t value;
    if (first >= 0xC2 && first <= 0xDF) {
        following = 1;
        value = first & 0x1F;
    } else if (first >= 0xE0 && first <= 0xEF) {
        following = 2;
        value = first & 0x0F;
    } else if (first >= 0xF0 && first <= 0xF4) {
        following = 3;
        value = first & 0x07;
    } else {
        return kUtf8Invalid; // a continuation byte, C0, C1 or F5..FF
    }
    for (int k = 0; k < following; ++k) {
        if (pos >= text.size())
            return kUtf8Invalid;
        const unsigned char next = byte(pos) ^ 0x80;
        if (next >= 0x40)
            return kUtf8Invalid; // not consumed: it may start the next character
        value = (value << 6) | next;
        const bool second = k == 0;
        // Beyond U+10FFFF shows at the third byte of four, which is then left.
        if (following == 3 && k == 1 && value >= (0x110000 >> 6))
            return kUtf8Invalid;
        ++pos;
        if (second && following == 3 && value < 0x10)
            return kUtf8Invalid; // overlong
        if (second && following == 2 && value < 0x20)
            return kUtf8Invalid; // overlong
        if (second && following == 2 && value >= (0xD800 >> 6) && value <= (0xDFFF >> 6)) {
            return kUtf8Invalid; // a surrogate's code point
        }
    }
    return value;
}

int EncodeUtf8(char32_t c, char* out) {
    if (c < 0x80) {
        out[0] = static_cast<char>(c);
        return 1;
    }
    if (c < 0x800) {
        out[0] = static_cast<char>(0xC0 | (c >> 6));
        out[1] = static_cast<char>(0x80 | (c & 0x3F));
        return 2;
    }
    if (c < 0x10000) {
        out[0] = static_cast<char>(0xE0 | (c >> 12));
        out[1] = static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        out[2] = static_cast<char>(0x80 | (c & 0x3F));
        return 3;
    }
    out[0] = static_cast<char>(0xF0 | (c >> 18));
    out[1] = static_cast<char>(0x80 | ((c >> 12) & 0x3F));
    out[2] = static_cast<char>(0x80 | ((c >> 6) & 0x3F));
    out[3] = static_cast<char>(0x80 | (c & 0x3F));
    return 4;
}

void AppendUtf8(std::string& out, std::u16string_view text) {
    // Runs of ASCII are narrowed on the stack and appended at once.
    char buffer[256];
    std::size_t i = 0;
    while (i < text.size()) {
        const std::size_t chunk = std::min(text.size() - i, sizeof buffer);
        std::size_t k = 0;
        while (k < chunk && text[i + k] < 0x80) {
            buffer[k] = static_cast<char>(text[i + k]);
            ++k;
        }
        out.append(buffer, k);
        i += k;
        if (k == chunk)
            continue;
        char32_t c = text[i++];
        if (c >= 0xD800 && c <= 0xDBFF && i < text.size() && text[i] >= 0xDC00 &&
            text[i] <= 0xDFFF) {
            c = 0x10000 + ((c - 0xD800) << 10) + (text[i++] - 0xDC00);
        } else if (c >= 0xD800 && c <= 0xDFFF) {
            c = 0xFFFD;
        }
        out.append(buffer, static_cast<std::size_t>(EncodeUtf8(c, buffer)));
    }
}

namespace {

// One unit of UTF-16 that is not ASCII, with the unit after it when the two
// form a pair; moves unit behind what it read.
char* WriteWide(char* out, const char16_t*& unit, const char16_t* end) {
    char32_t c = *unit++;
    if (c < 0x800) {
        out[0] = static_cast<char>(0xC0 | (c >> 6));
        out[1] = static_cast<char>(0x80 | (c & 0x3F));
        return out + 2;
    }
    if (c >= 0xD800 && c <= 0xDFFF) {
        if (c <= 0xDBFF && unit != end && *unit >= 0xDC00 && *unit <= 0xDFFF) {
            c = 0x10000 + ((c - 0xD800) << 10) + (*unit++ - 0xDC00);
            return out + EncodeUtf8(c, out);
        }
        c = 0xFFFD;
    }
    out[0] = static_cast<char>(0xE0 | (c >> 12));
    out[1] = static_cast<char>(0x80 | ((c >> 6) & 0x3F));
    out[2] = static_cast<char>(0x80 | (c & 0x3F));
    return out + 3;
}

} // namespace

char* WriteUtf8(char* out, std::u16string_view text) {
    const char16_t* unit = text.data();
    const char16_t* const end = unit + text.size();
    constexpr std::ptrdiff_t kBlock = 8;
    while (unit != end) {
        // Eight units at a time while they are all ASCII.
        const char16_t* blockEnd = end - unit >= kBlock ? unit + kBlock : end;
#if defined(__SSE2__)
        if (blockEnd - unit == kBlock) {
            const __m128i units = _mm_loadu_si128(reinterpret_cast<const __m128i*>(unit));
            const __m128i high = _mm_and_si128(units, _mm_set1_epi16(static_cast<short>(0xFF80)));
            if (_mm_movemask_epi8(_mm_cmpeq_epi16(high, _mm_setzero_si128())) == 0xFFFF) {
                _mm_storel_epi64(reinterpret_cast<__m128i*>(out), _mm_packus_epi16(units, units));
                out += kBlock;
                unit += kBlock;
                continue;
            }
        }
#endif
        // A pair at the block's end may take one unit beyond it.
        while (unit < blockEnd) {
            if (*unit < 0x80)
                *out++ = static_cast<char>(*unit++);
            else
                out = WriteWide(out, unit, end);
        }
    }
    return out;
}

void AppendUtf16(std::u16string& out, std::string_view text) {
    // No byte gives more than one unit (four give two), so the room is
    // taken at once and cut back to what was written.
    const std::size_t start = out.size();
    out.resize(start + text.size());
    char16_t* const first = out.data() + start;
    char16_t* unit = first;
    std::size_t pos = 0;
    while (pos < text.size()) {
        if (static_cast<unsigned char>(text[pos]) < 0x80) {
            *unit++ = static_cast<char16_t>(text[pos++]);
            continue;
        }
        const char32_t c = DecodeUtf8(text, pos);
        if (c == kUtf8Invalid) {
            *unit++ = 0xFFFD;
        } else if (c >= 0x10000) {
            *unit++ = static_cast<char16_t>(0xD800 + ((c - 0x10000) >> 10));
            *unit++ = static_cast<char16_t>(0xDC00 + ((c - 0x10000) & 0x3FF));
        } else {
            *unit++ = static_cast<char16_t>(c);
        }
    }
    out.resize(start + static_cast<std::size_t>(unit - first));
}

} // namespace tervane::locale
