#include "stream/tag_words.h"

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
    for (std::size_t at = 0; at < text.size(); ++at) {
        const unsigned letter = static_cast<unsigned>(data[at]) - u'a';
        if (letter >= 26 || (kFirstLetters >> letter & 1) == 0)
            continue;
        const std::uint32_t bits = WordsAt(data + at, text.size() - at);
        if (bits == 0)
            continue;
        words.found |= bits;
        if (at == 0)
            words.atStart |= bits;
        else if (data[at - 1] == u'/')
            words.afterSlash |= bits;
    }
    return words;
}

} // namespace tervane
