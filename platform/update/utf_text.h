#pragma once
// UTF-8 (the process's conversion code page) to UTF-16 and back, and the
// upper-casing that Win32 applies to resource names.
#include <string>
#include <string_view>

namespace tervane::update {

// Ill-formed sequences become U+FFFD, as MultiByteToWideChar does without flags.
std::u16string Utf8ToUtf16(std::string_view text);
// A lone surrogate becomes U+FFFD.
std::string Utf16ToUtf8(std::u16string_view text);
// Code unit by code unit: characters whose capital needs another length keep
// their case, as Win32's case table maps only one unit to one unit.
std::u16string UpcaseUtf16(std::u16string_view text);

} // namespace tervane::update
