#include "model/resource_buffer.h"

#include <limits>

#include "frame/diagnostics/exceptions.h"

namespace tervane {

namespace {

// A resource is at most what a DWORD size can say.
constexpr std::size_t kMostBytes = std::numeric_limits<DWORD>::max();

std::u16string_view UpToZero(std::u16string_view text) {
    const std::size_t zero = text.find(u'\0');
    return zero == std::u16string_view::npos ? text : text.substr(0, zero);
}

} // namespace

void CResourceBuffer::Reserve(std::size_t more) {
    if (more > kMostBytes - bytes_.size())
        throw TervaneFilterException(
            KeepText(("The rebuilt resource outgrows its size (" + context_ + ").").c_str()),
            "CResourceBuffer", "Reserve");
    while (capacity_ - bytes_.size() < more)
        capacity_ += kGrowth;
    bytes_.reserve(capacity_);
}

void CResourceBuffer::clear() {
    bytes_.clear();
    capacity_ = 0;
}

void CResourceBuffer::WriteByte(BYTE value) {
    Reserve(1);
    bytes_.push_back(value);
}

void CResourceBuffer::WriteWord(WORD value) {
    Reserve(2);
    bytes_.push_back(static_cast<std::uint8_t>(value & 0xFF));
    bytes_.push_back(static_cast<std::uint8_t>(value >> 8));
}

void CResourceBuffer::WriteDword(DWORD value) {
    Reserve(4);
    for (int shift = 0; shift < 32; shift += 8)
        bytes_.push_back(static_cast<std::uint8_t>(value >> shift));
}

void CResourceBuffer::WriteText(std::u16string_view text) {
    text = UpToZero(text);
    Reserve(2 * text.size() + 2);
    for (char16_t unit : text)
        WriteWord(unit);
    WriteWord(0);
}

void CResourceBuffer::WriteOptionalText(const std::optional<std::u16string>& text) {
    if (text)
        WriteText(std::u16string_view(*text));
    else
        WriteWord(0);
}

void CResourceBuffer::WriteOrdinal(WORD ordinal) {
    WriteDword(0xFFFFu | static_cast<DWORD>(ordinal) << 16);
}

void CResourceBuffer::WriteCountedText(std::u16string_view text) {
    text = UpToZero(text);
    const WORD count = Narrowed(text.size(), "a counted text");
    Reserve(2 * text.size() + 2);
    WriteWord(count);
    for (char16_t unit : text)
        WriteWord(unit);
}

void CResourceBuffer::WriteNarrowText(std::string_view text) {
    Reserve(text.size());
    bytes_.insert(bytes_.end(), text.begin(), text.end());
}

void CResourceBuffer::Align() {
    if (bytes_.size() % 4 == 2)
        WriteWord(0);
}

void CResourceBuffer::PatchWord(std::size_t at, WORD value) {
    bytes_.at(at + 1) = static_cast<std::uint8_t>(value >> 8);
    bytes_[at] = static_cast<std::uint8_t>(value & 0xFF);
}

WORD CResourceBuffer::Narrowed(std::size_t value, const char* what) const {
    if (value > 0xFFFF)
        throw TervaneFilterException(KeepText(("The rebuilt resource does not fit its format: " +
                                               std::string(what) + " of " + std::to_string(value) +
                                               " outgrows its 16-bit field (" + context_ + ").")
                                                  .c_str()),
                                     "CResourceBuffer", "Narrowed");
    return static_cast<WORD>(value);
}

} // namespace tervane
