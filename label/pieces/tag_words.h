#pragma once
// The words of a tag text that place the white space of the dialog and menu
// walks, all found in one pass. A word counts wherever it stands, attributes
// and identifiers included, and inside longer words: "item" in "<items>",
// "button" in "<radiobutton>". A tag piece keeps the words it was built with,
// so that the walks need not search its text again.
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace tervane {

// One bit a word.
inline constexpr std::uint32_t kWordDialog = 1u << 0;
inline constexpr std::uint32_t kWordCombobox = 1u << 1;
inline constexpr std::uint32_t kWordListbox = 1u << 2;
inline constexpr std::uint32_t kWordGroupbox = 1u << 3;
inline constexpr std::uint32_t kWordItems = 1u << 4;
inline constexpr std::uint32_t kWordButton = 1u << 5;
inline constexpr std::uint32_t kWordLabel = 1u << 6;
inline constexpr std::uint32_t kWordRadiobutton = 1u << 7;
inline constexpr std::uint32_t kWordCheckbox = 1u << 8;
inline constexpr std::uint32_t kWordCaption = 1u << 9;
inline constexpr std::uint32_t kWordItem = 1u << 10;
inline constexpr std::uint32_t kWordEdit = 1u << 11;
inline constexpr std::uint32_t kWordMenu = 1u << 12;
inline constexpr std::uint32_t kWordMenuId = 1u << 13; // "menu id"
inline constexpr std::uint32_t kWordItemId = 1u << 14; // "item id"
inline constexpr std::uint32_t kWordSeparator = 1u << 15;

struct TagWords {
    std::uint32_t found = 0;      // anywhere in the text
    std::uint32_t afterSlash = 0; // somewhere right behind a '/'
    std::uint32_t atStart = 0;    // at the very start of the text

    bool Any(std::uint32_t words) const { return (found & words) != 0; }
    bool AnyAfterSlash(std::uint32_t words) const { return (afterSlash & words) != 0; }
    // The word's first occurrence is not at the start: what a search that
    // ignores a match at 0 answers.
    bool FirstAfterStart(std::uint32_t word) const { return (found & ~atStart & word) != 0; }
};

namespace tag_words_detail {

using namespace std::string_view_literals;

// The word stands at p, whose first letter the caller has matched already.
constexpr bool WordAt(const char16_t* p, std::size_t left, std::u16string_view word) {
    if (left < word.size())
        return false;
    for (std::size_t i = 1; i < word.size(); ++i)
        if (p[i] != word[i])
            return false;
    return true;
}

// The words' first letters, so that most places are passed over at once.
inline constexpr std::uint32_t kFirstLetters =
    1u << ('b' - 'a') | 1u << ('c' - 'a') | 1u << ('d' - 'a') | 1u << ('e' - 'a') |
    1u << ('g' - 'a') | 1u << ('i' - 'a') | 1u << ('l' - 'a') | 1u << ('m' - 'a') |
    1u << ('r' - 'a') | 1u << ('s' - 'a');

// The words that begin at p; words that begin with the same letter exclude
// each other but for "item" and "menu", which others begin with.
constexpr std::uint32_t WordsAt(const char16_t* p, std::size_t left) {
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

// Adds the words that begin at the text's place at.
constexpr void LookAt(std::u16string_view text, std::size_t at, TagWords& words) {
    const unsigned letter = static_cast<unsigned>(text[at]) - u'a';
    if (letter >= 26 || (kFirstLetters >> letter & 1) == 0)
        return;
    const std::uint32_t bits = WordsAt(text.data() + at, text.size() - at);
    if (bits == 0)
        return;
    words.found |= bits;
    if (at == 0)
        words.atStart |= bits;
    else if (text[at - 1] == u'/')
        words.afterSlash |= bits;
}

} // namespace tag_words_detail

// Place by place: for the texts known when the program is built.
constexpr TagWords FindTagWordsPlain(std::u16string_view text) {
    TagWords words;
    for (std::size_t at = 0; at < text.size(); ++at)
        tag_words_detail::LookAt(text, at, words);
    return words;
}

// The same, most places passed over several at a time.
TagWords FindTagWords(std::u16string_view text);

// The words as a tag piece keeps them in 32 bits: found in the low half,
// after a slash in the high one. A text with a word at its very start does
// not fit, nor one with every word behind a slash: those are kWordsUnknown,
// and searched again when asked.
inline constexpr std::uint32_t kWordsUnknown = 0xFFFFFFFFu;

constexpr std::uint32_t PackTagWords(const TagWords& words) {
    if (words.atStart != 0)
        return kWordsUnknown;
    return words.found | words.afterSlash << 16;
}

// The words kept, or those of text when none were.
inline TagWords UnpackTagWords(std::uint32_t packed, std::u16string_view text) {
    if (packed == kWordsUnknown)
        return FindTagWords(text);
    return {packed & 0xFFFFu, packed >> 16, 0};
}

} // namespace tervane
