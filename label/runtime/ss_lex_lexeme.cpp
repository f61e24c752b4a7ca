#include "label/runtime/ss_lex_lexeme.h"

#include <cstring>
#include <new>

#include "label/runtime/ss_pool.h"

namespace tervane {

SSLexLexeme* SSLexLexeme::create(const std::uint8_t* text, std::uint32_t length, bool narrow,
                                 std::uint32_t token, std::uint32_t line, std::uint32_t offset,
                                 std::uint32_t bufferOffset) {
    void* memory = ss_pool::Allocate(TextOffset() + length + 2);
    if (!memory)
        throw SSExceptionOutOfStorage();
    auto* lexeme = new (memory) SSLexLexeme();
    lexeme->text_ = static_cast<std::uint8_t*>(memory) + TextOffset();
    if (length)
        std::memcpy(lexeme->text_, text, length);
    lexeme->text_[length] = 0;
    lexeme->text_[length + 1] = 0;
    lexeme->length_ = length;
    lexeme->narrow_ = narrow;
    lexeme->token_ = token;
    lexeme->line_ = line;
    lexeme->offset_ = offset;
    lexeme->bufferOffset_ = bufferOffset;
    lexeme->release(false);
    return lexeme;
}

SSLexLexeme* SSLexLexeme::create(std::u16string_view text, std::uint32_t token, std::uint32_t line,
                                 std::uint32_t offset) {
    // The runtime's own texts are a few characters long: no heap for them.
    std::uint8_t small[32];
    std::string large;
    std::uint8_t* bytes = small;
    if (text.size() > sizeof small / 2) {
        large.resize(text.size() * 2);
        bytes = reinterpret_cast<std::uint8_t*>(large.data());
    }
    for (std::size_t i = 0; i < text.size(); ++i) {
        bytes[2 * i] = static_cast<std::uint8_t>(text[i] & 0xFF);
        bytes[2 * i + 1] = static_cast<std::uint8_t>(text[i] >> 8);
    }
    return create(bytes, static_cast<std::uint32_t>(text.size() * 2), false, token, line, offset,
                  0);
}

std::u16string_view SSLexLexeme::wideText() const {
    return {reinterpret_cast<const char16_t*>(text_), length_ / 2};
}

std::string_view SSLexLexeme::narrowText() const {
    return {reinterpret_cast<const char*>(text_), length_};
}

std::string SSLexLexeme::displayText() const {
    if (narrow_)
        return std::string(narrowText());
    std::string out;
    std::u16string_view wide = wideText();
    for (std::size_t i = 0; i < wide.size(); ++i) {
        std::uint32_t c = wide[i];
        if (c >= 0xD800 && c < 0xDC00 && i + 1 < wide.size() && wide[i + 1] >= 0xDC00 &&
            wide[i + 1] < 0xE000) {
            c = 0x10000 + ((c - 0xD800) << 10) + (wide[++i] - 0xDC00);
        } else if (c >= 0xD800 && c < 0xE000) {
            c = 0xFFFD;
        }
        if (c < 0x80) {
            out.push_back(static_cast<char>(c));
        } else if (c < 0x800) {
            out.push_back(static_cast<char>(0xC0 | (c >> 6)));
            out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
        } else if (c < 0x10000) {
            out.push_back(static_cast<char>(0xE0 | (c >> 12)));
            out.push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3F)));
            out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
        } else {
            out.push_back(static_cast<char>(0xF0 | (c >> 18)));
            out.push_back(static_cast<char>(0x80 | ((c >> 12) & 0x3F)));
            out.push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3F)));
            out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
        }
    }
    return out;
}

} // namespace tervane
