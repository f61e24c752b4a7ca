#include "model/unit_runs.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include "platform/byte_reader.h"

namespace tervane {

namespace {

constexpr bool IsEscaped(std::uint16_t c) {
    return c == 0 || c == 8 || c == 10 || c == 12 || c == 13 || c == u'&' || c == u'\\';
}

#if defined(__SSE2__)
// A mask with a bit set for each unit of the eight that equals one of units.
template <typename... Units> int Matches(__m128i block, Units... units) {
    const __m128i any = (_mm_cmpeq_epi16(block, _mm_set1_epi16(static_cast<short>(units))) | ...);
    return _mm_movemask_epi8(any);
}
#endif

} // namespace

std::size_t PlainEscapeRun(const std::uint8_t* units, std::size_t count) {
    std::size_t at = 0;
#if defined(__SSE2__)
    // Lanes read as little-endian units, as the processor stores them.
    for (; count - at >= 8; at += 8) {
        const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(units + 2 * at));
        if (Matches(block, 0, 8, 10, 12, 13, u'&', u'\\') != 0)
            break;
    }
#endif
    while (at < count && !IsEscaped(LoadU16LE(units + 2 * at)))
        ++at;
    return at;
}

std::size_t PlainUnescapeRun(const char16_t* text, std::size_t count) {
    return RunWithout(text, count, u'\\', u'%', u'\\');
}

std::size_t RunWithout(const char16_t* text, std::size_t count, char16_t a, char16_t b,
                       char16_t c) {
    std::size_t at = 0;
#if defined(__SSE2__)
    for (; count - at >= 8; at += 8) {
        const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text + at));
        if (Matches(block, a, b, c) != 0)
            break;
    }
#endif
    while (at < count && text[at] != a && text[at] != b && text[at] != c)
        ++at;
    return at;
}

} // namespace tervane
