#pragma once
// A control's or a menu item's text as Windows shows it: '&' marks the next
// character as the hotkey, underlined, and "&&" stands for one '&'.
#include <string>
#include <string_view>

namespace tervane::preview {

struct HotkeyText {
    std::string text; // UTF-8, the marks taken out
    // Byte range of the underlined character in text; begin == end for none.
    std::size_t underlineBegin = 0;
    std::size_t underlineEnd = 0;

    bool HasHotkey() const { return underlineEnd > underlineBegin; }
};

// With noPrefix (SS_NOPREFIX) the text stands as it is. Where several marks
// stand, the last one is underlined, as DrawText does.
HotkeyText ParseHotkeys(std::u16string_view text, bool noPrefix = false);

} // namespace tervane::preview
