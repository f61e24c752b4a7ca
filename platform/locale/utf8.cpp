#include "platform/locale/utf8.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

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
    while (unit != end) {
#if defined(__SSE2__)
        // Eight units at a time while they are all ASCII, then four.
        const __m128i high = _mm_set1_epi16(static_cast<short>(0xFF80));
        if (end - unit >= 8) {
            const __m128i units = _mm_loadu_si128(reinterpret_cast<const __m128i*>(unit));
            if (_mm_movemask_epi8(
                    _mm_cmpeq_epi16(_mm_and_si128(units, high), _mm_setzero_si128())) == 0xFFFF) {
                _mm_storel_epi64(reinterpret_cast<__m128i*>(out), _mm_packus_epi16(units, units));
                out += 8;
                unit += 8;
                continue;
            }
        }
        if (end - unit >= 4) {
            const __m128i units = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(unit));
            if ((_mm_movemask_epi8(
                     _mm_cmpeq_epi16(_mm_and_si128(units, high), _mm_setzero_si128())) &
                 0xFF) == 0xFF) {
                const int packed = _mm_cvtsi128_si32(_mm_packus_epi16(units, units));
                std::memcpy(out, &packed, 4);
                out += 4;
                unit += 4;
                continue;
            }
        }
#endif
        // One ASCII unit, or a run of others, before the blocks are tried again.
        if (*unit < 0x80) {
            *out++ = static_cast<char>(*unit++);
            continue;
        }
        do
            out = WriteWide(out, unit, end);
        while (unit != end && *unit >= 0x80);
    }
    return out;
}

char16_t* WriteUtf16(char16_t* out, std::string_view text) {
    const char* const bytes = text.data();
    const std::size_t size = text.size();
    std::size_t pos = 0;
    while (pos < size) {
#if defined(__SSE2__)
        // Sixteen bytes at a time while they are all ASCII.
        if (size - pos >= 16) {
            const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes + pos));
            if (_mm_movemask_epi8(block) == 0) {
                const __m128i zero = _mm_setzero_si128();
                _mm_storeu_si128(reinterpret_cast<__m128i*>(out), _mm_unpacklo_epi8(block, zero));
                _mm_storeu_si128(reinterpret_cast<__m128i*>(out + 8),
                                 _mm_unpackhi_epi8(block, zero));
                out += 16;
                pos += 16;
                continue;
            }
        }
        // Then eight, which most tags and short texts are made of.
        if (size - pos >= 8) {
            const __m128i block = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(bytes + pos));
            if ((_mm_movemask_epi8(block) & 0xFF) == 0) {
                _mm_storeu_si128(reinterpret_cast<__m128i*>(out),
                                 _mm_unpacklo_epi8(block, _mm_setzero_si128()));
                out += 8;
                pos += 8;
                continue;
            }
        }
#endif
        if (static_cast<unsigned char>(bytes[pos]) < 0x80) {
            *out++ = static_cast<char16_t>(bytes[pos++]);
            continue;
        }
        const char32_t c = DecodeUtf8(text, pos);
        if (c == kUtf8Invalid) {
            *out++ = 0xFFFD;
        } else if (c >= 0x10000) {
            *out++ = static_cast<char16_t>(0xD800 + ((c - 0x10000) >> 10));
            *out++ = static_cast<char16_t>(0xDC00 + ((c - 0x10000) & 0x3FF));
        } else {
            *out++ = static_cast<char16_t>(c);
        }
    }
    return out;
}

void AppendUtf16(std::u16string& out, std::string_view text) {
    // Room for a unit a byte is taken at once and cut back to what was written.
    const std::size_t start = out.size();
    out.resize(start + text.size());
    char16_t* const first = out.data() + start;
    out.resize(start + static_cast<std::size_t>(WriteUtf16(first, text) - first));
}

} // namespace tervane::locale
