#pragma once
// The growing buffer into which a rebuilt resource is written, little-endian.
// Every length or count that goes into a 16-bit field is checked: a value
// that does not fit ends in TervaneFilterException naming the resource, so
// that an overlong text never makes a wrong file.
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/win32/types.h"

namespace tervane {

class CResourceBuffer {
public:
    // Room grows by this many bytes whenever an item does not fit.
    static constexpr std::size_t kGrowth = 512;

    // Names the resource in the message of a value that outgrows its field.
    void SetContext(std::string context) { context_ = std::move(context); }
    const std::string& Context() const { return context_; }

    void WriteByte(BYTE value);
    void WriteWord(WORD value);
    void WriteDword(DWORD value);
    // The units up to the text's first zero unit, and a zero word.
    void WriteText(std::u16string_view text);
    // No text: one zero word.
    void WriteOptionalText(const std::optional<std::u16string>& text);
    // A number where a name may stand: 0xFFFF and the number.
    void WriteOrdinal(WORD ordinal);
    // The text's length as a word, then its units, without a terminator.
    void WriteCountedText(std::u16string_view text);
    // An absent counted text: one zero word.
    void WriteEmptyCountedText() { WriteWord(0); }
    void WriteNarrowText(std::string_view text);
    // One zero word if used is 2 modulo 4.
    void Align();
    // Writes value over the word at byte at, which must have been written.
    void PatchWord(std::size_t at, WORD value);

    // The value as a word, or the error naming the resource and what outgrew it.
    WORD Narrowed(std::size_t value, const char* what) const;

    const std::uint8_t* data() const { return bytes_.data(); }
    DWORD used() const { return static_cast<DWORD>(bytes_.size()); }
    std::size_t capacity() const { return capacity_; }
    const std::vector<std::uint8_t>& bytes() const { return bytes_; }
    void clear();

private:
    void Reserve(std::size_t more);

    std::vector<std::uint8_t> bytes_;
    std::size_t capacity_ = 0;
    std::string context_;
};

} // namespace tervane
