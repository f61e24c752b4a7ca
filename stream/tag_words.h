#pragma once
// The words of a tag text that place the white space of the dialog and menu
// walks, all found in one pass. A word counts wherever it stands, attributes
// and identifiers included, and inside longer words: "item" in "<items>",
// "button" in "<radiobutton>".
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

TagWords FindTagWords(std::u16string_view text);

} // namespace tervane
