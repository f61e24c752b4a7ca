#pragma once
// UTF-8 as Windows reads and writes it: each ill-formed part of the input
// stands for one U+FFFD, cut where the first byte that cannot continue it
// begins (an overlong or surrogate form ends at its second byte).
#include <cstddef>
#include <string>
#include <string_view>

namespace tervane::locale {

inline constexpr char32_t kUtf8Invalid = 0xFFFFFFFF;

// Reads one character at text[pos] and moves pos behind it; kUtf8Invalid for
// an ill-formed part, which is then consumed whole.
char32_t DecodeUtf8(std::string_view text, std::size_t& pos);

// Writes the UTF-8 form of a scalar value into out (room for 4) and gives its length.
int EncodeUtf8(char32_t c, char* out);

// Appends the UTF-8 form of UTF-16 text; a lone surrogate becomes U+FFFD.
void AppendUtf8(std::string& out, std::u16string_view text);

// Writes the UTF-8 form of UTF-16 text at out, which must have room for
// kUtf8PerUnit bytes a unit, and gives the end of what it wrote; a lone
// surrogate becomes U+FFFD, as in AppendUtf8.
inline constexpr std::size_t kUtf8PerUnit = 3;
char* WriteUtf8(char* out, std::u16string_view text);

// Writes the UTF-16 form of UTF-8 text at out, which must have room for a
// unit a byte (no byte gives more: four give two), and gives the end of what
// it wrote; each ill-formed part becomes one U+FFFD, as in AppendUtf16.
char16_t* WriteUtf16(char16_t* out, std::string_view text);

// Appends the UTF-16 form of UTF-8 text, each ill-formed part one U+FFFD.
void AppendUtf16(std::u16string& out, std::string_view text);

} // namespace tervane::locale
