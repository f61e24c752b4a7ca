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

} // namespace tervane
