#pragma once
// The character source of the lexer, with the marks by which the scan gives
// back what it read beyond the longest match.
#include <cstdint>
#include <string_view>
#include <vector>

#include "label/runtime/ss_exception.h"

namespace tervane {

class rcparsedbcsinfo;
class SSLexLexeme;

struct SSLexMark {
    std::uint32_t index = 0;
    std::uint32_t lineDelta = 0;
    std::uint32_t offset = 0;
};

class SSLexConsumer : public SSExceptionPresent {
public:
    static constexpr std::uint32_t kStartOfInput = 0xFFFFFFFF;
    enum Type : std::uint32_t { kSingleByte = 0, kWide = 1, kDoubleByte = 2 };

    SSLexConsumer();
    SSLexConsumer(const SSLexConsumer&) = delete;
    SSLexConsumer& operator=(const SSLexConsumer&) = delete;
    virtual ~SSLexConsumer() = default;

    // Reads one character into current(); 0 at the end of the input.
    int next();

    SSLexMark mark() const { return {index_, lineDelta_, offset_}; }
    void flushTo(const SSLexMark& mark);
    void resync();
    void adjust(SSLexMark& mark, bool clear) {
        mark.index -= shift_;
        if (clear)
            shift_ = 0;
    }

    // Brings more data into the buffer; returns the number of bytes brought.
    virtual std::uint32_t refill() = 0;

    std::uint32_t type() const { return type_; }
    std::uint32_t current() const { return current_; }
    bool endOfData() const { return endOfData_; }
    std::uint32_t consumed() const { return consumed_; }
    std::uint32_t lexemeLine() const { return lexemeLine_; }
    std::uint32_t lexemeOffset() const { return lexemeOffset_; }
    std::uint32_t lexemeStart() const { return lexemeStart_; }
    std::uint32_t index() const { return index_; }
    std::uint32_t end() const { return end_; }
    std::uint32_t lineDelta() const { return lineDelta_; }
    std::uint32_t offset() const { return offset_; }
    std::uint32_t shift() const { return shift_; }
    std::uint32_t bufferBase() const { return bufferBase_; }
    bool nativeOrder() const { return nativeOrder_; }
    bool firstReadPending() const { return firstRead_ != 0; }
    // Bytes of one character of this consumer's text.
    std::uint32_t characterWidth() const { return type_ == kWide ? 2 : 1; }

    // The lexeme of the text from lexemeStart to mark, then flushTo(mark).
    SSLexLexeme* completeLexeme(std::uint32_t token, const SSLexMark& mark);
    // The unmatched text from lexemeStart to index with token 0, then resync().
    SSLexLexeme* errorLexeme();
    // A startOfLine lexeme leaves its leading newline to the previous line.
    void skipLeadingNewline(SSLexMark& mark);

protected:
    // For refill(): puts bytes behind the valid data, without moving end.
    void appendToBuffer(const std::uint8_t* bytes, std::uint32_t count);

    const rcparsedbcsinfo& dbcsInfo_;
    std::uint32_t type_ = kSingleByte;
    std::uint32_t firstRead_ = 0xFFFFFFFF;
    std::uint32_t lexemeLine_ = 0;
    std::uint32_t length_ = 0;
    std::uint32_t shift_ = 0;
    std::uint32_t bufferBase_ = 0;
    // Always two zero bytes longer than the valid data, so that a wide read
    // at the last byte stays inside.
    std::vector<std::uint8_t> buffer_;
    std::uint32_t lexemeStart_ = 0;
    std::uint32_t index_ = 0;
    std::uint32_t end_ = 0;
    std::uint32_t lexemeOffset_ = 0;
    std::uint32_t current_ = 0;
    bool endOfData_ = false;
    std::uint32_t consumed_ = 0;
    std::uint32_t lineDelta_ = 1;
    std::uint32_t offset_ = 1;
    bool nativeOrder_ = true;
};

// A consumer over a copy of a wide text; it never refills.
class SSLexStringConsumer : public SSLexConsumer {
public:
    explicit SSLexStringConsumer(std::u16string_view text);
    // The text up to its first null character.
    explicit SSLexStringConsumer(const char16_t* text);
    std::uint32_t refill() override { return 0; }
};

} // namespace tervane
