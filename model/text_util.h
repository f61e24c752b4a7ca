#pragma once
// Small wide-text helpers of the resource models.
#include <string>
#include <string_view>

namespace tervane {

// The white-space test of the C library's iswspace for the characters labels hold.
bool IsWideSpace(char16_t c);
std::u16string TrimLeft(std::u16string_view text);
std::u16string TrimRight(std::u16string_view text);
// The same as views into text.
std::u16string_view TrimLeftView(std::u16string_view text);
std::u16string_view TrimRightView(std::u16string_view text);

// Each occurrence of from, left to right, by to.
void ReplaceAll(std::u16string& text, std::u16string_view from, std::u16string_view to);
// The two-character escapes \r, \n, \b and \f as their control characters,
// and back, one replacement over the whole text after the other.
void UnescapeControls(std::u16string& text);
void EscapeControls(std::u16string& text);

} // namespace tervane
