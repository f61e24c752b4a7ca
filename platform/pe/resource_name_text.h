#pragma once
// Text of resource names between the directory's UTF-16 and the A functions'
// narrow text (UTF-8, the process's conversion code page), and the loader's
// upper-casing of a name that is looked up.
#include <string>
#include <string_view>

namespace tervane::pe {

// Unpaired surrogates become U+FFFD, as WideCharToMultiByte does for UTF-8.
std::string Utf16ToUtf8(std::u16string_view text);
// Invalid sequences become U+FFFD, as MultiByteToWideChar does for UTF-8.
std::u16string Utf8ToUtf16(std::string_view text);
// Unit by unit with the simple Unicode case mapping of the basic plane, as the
// loader's upper-case table works on single UTF-16 units.
std::u16string UpcaseName(std::u16string_view name);

} // namespace tervane::pe
