#pragma once
// One token with its text and position. A lexeme and its text are one
// allocation: the text (always followed by two zero bytes) lies behind the
// object.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "label/runtime/ss_exception.h"
#include "label/runtime/ss_pool.h"
#include "label/runtime/ss_ref.h"

namespace tervane {

// Final, so that a holder's release frees it without a virtual call.
class SSLexLexeme final : public SSRefCount, public SSExceptionPresent {
public:
    // A new lexeme over a copy of text, handed over with count 0.
    static SSLexLexeme* create(const std::uint8_t* text, std::uint32_t length, bool narrow,
                               std::uint32_t token, std::uint32_t line, std::uint32_t offset,
                               std::uint32_t bufferOffset);
    // For texts made by the runtime itself ("eof", "%error").
    static SSLexLexeme* create(std::u16string_view text, std::uint32_t token, std::uint32_t line,
                               std::uint32_t offset);

    void destroy() override {
        const std::size_t size = TextOffset() + length_ + 2;
        this->~SSLexLexeme();
        ss_pool::Free(static_cast<void*>(this), size);
    }
    // Final, so that holders of lexemes count without a virtual call.
    void addRef() final { SSRefCount::addRef(); }
    void release(bool deleteAtZero) final { SSRefCount::release(deleteAtZero); }

    // False: the text lies in the same allocation, behind the object.
    bool ownsText() const { return ownsText_; }
    bool narrow() const { return narrow_; }
    std::uint32_t line() const { return line_; }
    std::uint32_t token() const { return token_; }
    std::uint32_t offset() const { return offset_; }
    std::uint32_t bufferOffset() const { return bufferOffset_; }
    std::uint32_t userValue() const { return userValue_; }
    // Length in bytes, without the terminator.
    std::uint32_t length() const { return length_; }
    std::uint8_t* text() { return text_; }
    const std::uint8_t* text() const { return text_; }

    // The parser's view of the token.
    std::uint32_t parseToken() const { return userValue_ ? userValue_ : token_; }

    void setToken(std::uint32_t token) { token_ = token; }
    void setUserValue(std::uint32_t value) { userValue_ = value; }

    // The text as UTF-16 (wide lexemes) or as bytes (narrow ones).
    std::u16string_view wideText() const;
    std::string_view narrowText() const;
    // The text as UTF-8, whatever its width, for messages.
    std::string displayText() const;

private:
    // The text starts at a multiple of the object's alignment, so a wide
    // text is aligned for char16_t.
    static constexpr std::size_t TextOffset();

    SSLexLexeme() = default;
    ~SSLexLexeme() override = default;

    bool ownsText_ = false;
    bool narrow_ = true;
    std::uint32_t line_ = 0;
    std::uint32_t token_ = 0;
    std::uint8_t* text_ = nullptr;
    std::uint32_t length_ = 0;
    std::uint32_t offset_ = 0;
    std::uint32_t bufferOffset_ = 0;
    std::uint32_t userValue_ = 0;
};

constexpr std::size_t SSLexLexeme::TextOffset() {
    constexpr std::size_t align = alignof(std::max_align_t);
    return (sizeof(SSLexLexeme) + align - 1) / align * align;
}

} // namespace tervane
