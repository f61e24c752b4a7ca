#include "label/pieces/tag_words.h"

#include <bit>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace tervane {

TagWords FindTagWords(std::u16string_view text) {
    TagWords words;
    const std::size_t size = text.size();
    std::size_t at = 0;
#if defined(__SSE2__)
    const char16_t* const data = text.data();
    // Eight units at a time, only those from 'b' to 's' looked at: digits,
    // quotes, blanks and most of the attribute names are passed over.
    const __m128i first = _mm_set1_epi16(u'b');
    const __m128i span = _mm_set1_epi16(u's' - u'b');
    for (; size - at >= 8; at += 8) {
        const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(data + at));
        const __m128i offset = _mm_sub_epi16(block, first);
        const __m128i inside = _mm_cmpeq_epi16(_mm_subs_epu16(offset, span), _mm_setzero_si128());
        // Two bits a unit; the lower one stands for it.
        for (unsigned mask = static_cast<unsigned>(_mm_movemask_epi8(inside)) & 0x5555u; mask != 0;
             mask &= mask - 1)
            tag_words_detail::LookAt(
                text, at + static_cast<std::size_t>(std::countr_zero(mask)) / 2, words);
    }
#endif
    for (; at < size; ++at)
        tag_words_detail::LookAt(text, at, words);
    return words;
}

} // namespace tervane
