#include "stream/tag_words.h"

#include <bit>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace tervane {

namespace {

using namespace std::string_view_literals;

// The word stands at p, whose first letter the caller has matched already.
inline bool WordAt(const char16_t* p, std::size_t left, std::u16string_view word) {
    if (left < word.size())
        return false;
    for (std::size_t i = 1; i < word.size(); ++i)
        if (p[i] != word[i])
            return false;
    return true;
}

// The words that begin at p; words that begin with the same letter exclude
// each other but for "item" and "menu", which others begin with.
std::uint32_t WordsAt(const char16_t* p, std::size_t left) {
    switch (*p) {
    case u'b':
        return WordAt(p, left, u"button"sv) ? kWordButton : 0;
    case u'c':
        if (WordAt(p, left, u"combobox"sv))
            return kWordCombobox;
        if (WordAt(p, left, u"checkbox"sv))
            return kWordCheckbox;
        return WordAt(p, left, u"caption"sv) ? kWordCaption : 0;
    case u'd':
        return WordAt(p, left, u"dialog"sv) ? kWordDialog : 0;
    case u'e':
        return WordAt(p, left, u"edit"sv) ? kWordEdit : 0;
    case u'g':
        return WordAt(p, left, u"groupbox"sv) ? kWordGroupbox : 0;
    case u'i':
        if (!WordAt(p, left, u"item"sv))
            return 0;
        if (WordAt(p, left, u"items"sv))
            return kWordItem | kWordItems;
        return WordAt(p, left, u"item id"sv) ? kWordItem | kWordItemId : kWordItem;
    case u'l':
        if (WordAt(p, left, u"listbox"sv))
            return kWordListbox;
        return WordAt(p, left, u"label"sv) ? kWordLabel : 0;
    case u'm':
        if (!WordAt(p, left, u"menu"sv))
            return 0;
        return WordAt(p, left, u"menu id"sv) ? kWordMenu | kWordMenuId : kWordMenu;
    case u'r':
        return WordAt(p, left, u"radiobutton"sv) ? kWordRadiobutton : 0;
    case u's':
        return WordAt(p, left, u"separator"sv) ? kWordSeparator : 0;
    default:
        return 0;
    }
}

} // namespace

TagWords FindTagWords(std::u16string_view text) {
    // The words' first letters, so that most places are passed over at once.
    constexpr std::uint32_t kFirstLetters =
        1u << ('b' - 'a') | 1u << ('c' - 'a') | 1u << ('d' - 'a') | 1u << ('e' - 'a') |
        1u << ('g' - 'a') | 1u << ('i' - 'a') | 1u << ('l' - 'a') | 1u << ('m' - 'a') |
        1u << ('r' - 'a') | 1u << ('s' - 'a');
    TagWords words;
    const char16_t* const data = text.data();
    const std::size_t size = text.size();
    auto look = [&](std::size_t at) {
        const unsigned letter = static_cast<unsigned>(data[at]) - u'a';
        if (letter >= 26 || (kFirstLetters >> letter & 1) == 0)
            return;
        const std::uint32_t bits = WordsAt(data + at, size - at);
        if (bits == 0)
            return;
        words.found |= bits;
        if (at == 0)
            words.atStart |= bits;
        else if (data[at - 1] == u'/')
            words.afterSlash |= bits;
    };
    std::size_t at = 0;
#if defined(__SSE2__)
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
            look(at + static_cast<std::size_t>(std::countr_zero(mask)) / 2);
    }
#endif
    for (; at < size; ++at)
        look(at);
    return words;
}

} // namespace tervane
