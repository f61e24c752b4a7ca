#pragma once
// A lexeme as a value: its token, position and where its text lies in the
// consumer's buffer. A lexeme object is made from it only when someone asks
// for one; a token that came as an object (from a lexer hook, or the end of
// the input) refers to it.
#include <cstdint>
#include <string_view>
#include <utility>

#include "label/runtime/ss_lex_consumer.h"
#include "label/runtime/ss_lex_lexeme.h"

namespace tervane {

// Plain data: whoever holds it holds the reference to object, if any.
struct SSLexTokenData {
    const SSLexConsumer* source = nullptr;
    std::uint32_t token = 0;
    std::uint32_t userValue = 0;
    std::uint32_t start = 0; // bytes into the source's buffer
    std::uint32_t length = 0;
    std::uint32_t line = 0;
    std::uint32_t offset = 0;
    std::uint32_t bufferOffset = 0;
    bool narrow = false;
    bool present = false;          // false for a non-terminal
    SSLexLexeme* object = nullptr; // stands for the whole token when set

    std::uint32_t parseToken() const {
        if (object)
            return object->parseToken();
        return userValue ? userValue : token;
    }
    // The lexeme's bytes seen as UTF-16, as SSLexLexeme::wideText() does.
    std::u16string_view wideText() const {
        if (object)
            return object->wideText();
        if (!present)
            return {};
        return {reinterpret_cast<const char16_t*>(source->bufferData() + start), length / 2};
    }
    // Makes object from the view, with the reference for the holder, while
    // the source still holds the text; null when not present.
    SSLexLexeme* lexeme();
    // Takes a reference to object, which stands for the whole token; holds
    // none before.
    void setObject(SSLexLexeme* lexeme) {
        if (lexeme)
            lexeme->addRef();
        *this = {};
        present = lexeme != nullptr;
        object = lexeme;
    }
    // Lets go of object.
    void drop() {
        if (object)
            std::exchange(object, nullptr)->release(true);
    }
};

// The same with its reference held for the lifetime of the value.
class SSLexToken {
public:
    SSLexToken() = default;
    SSLexToken(const SSLexToken& other) : data_(other.data_) {
        if (data_.object)
            data_.object->addRef();
    }
    SSLexToken(SSLexToken&& other) noexcept : data_(other.take()) {}
    SSLexToken& operator=(const SSLexToken& other) {
        if (this != &other) {
            if (other.data_.object)
                other.data_.object->addRef();
            data_.drop();
            data_ = other.data_;
        }
        return *this;
    }
    SSLexToken& operator=(SSLexToken&& other) noexcept {
        if (this != &other) {
            data_.drop();
            data_ = other.take();
        }
        return *this;
    }
    ~SSLexToken() { data_.drop(); }

    // The text from start to start + length of source's buffer.
    void setView(const SSLexConsumer* source, std::uint32_t token, std::uint32_t start,
                 std::uint32_t length, bool narrow, std::uint32_t line, std::uint32_t offset,
                 std::uint32_t bufferOffset) {
        data_.drop();
        data_ = {source, token,        0,      start, length, line,
                 offset, bufferOffset, narrow, true,  nullptr};
    }
    // Takes a reference to object, which stands for the whole token.
    void setObject(SSLexLexeme* object);
    void clear() {
        data_.drop();
        data_ = {};
    }
    // Takes over data with the reference it holds, if any.
    void adopt(const SSLexTokenData& data) {
        data_.drop();
        data_ = data;
    }
    // Hands the data over with its reference; this token is left empty.
    SSLexTokenData take() {
        SSLexTokenData data = data_;
        data_.object = nullptr;
        data_.present = false;
        return data;
    }

    bool present() const { return data_.present; }
    std::uint32_t parseToken() const { return data_.parseToken(); }
    void setUserValue(std::uint32_t value) { data_.userValue = value; }
    std::u16string_view wideText() const { return data_.wideText(); }
    // The lexeme object, made on first use; null when not present.
    SSLexLexeme* lexeme() { return data_.object ? data_.object : data_.lexeme(); }
    SSLexLexeme* object() const { return data_.object; }

private:
    SSLexTokenData data_;
};

} // namespace tervane
