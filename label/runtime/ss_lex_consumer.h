#pragma once
// The character source of the lexer, with the marks by which the scan gives
// back what it read beyond the longest match.
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string_view>

#include "label/runtime/ss_exception.h"
#include "label/runtime/ss_lex_lexeme.h"

namespace tervane {

class rcparsedbcsinfo;
class SSLex;

// Where a character leaves the position: a line feed starts the next line at
// offset 1, anything else moves one place along.
inline void CountCharacter(std::uint32_t c, std::uint32_t& lineDelta, std::uint32_t& offset) {
    if (c == 10) {
        ++lineDelta;
        offset = 1;
    } else {
        ++offset;
    }
}

struct SSLexMark {
    std::uint32_t index = 0;
    std::uint32_t lineDelta = 0;
    std::uint32_t offset = 0;
};

// The bytes a consumer reads. A label's text fits in the object itself, so
// that a consumer made for each label costs no allocation. Grown bytes are
// zero; a failed growth throws std::bad_alloc and changes nothing.
class SSLexBuffer {
public:
    SSLexBuffer() = default;
    SSLexBuffer(const SSLexBuffer&) = delete;
    SSLexBuffer& operator=(const SSLexBuffer&) = delete;

    std::uint8_t* data() { return data_; }
    const std::uint8_t* data() const { return data_; }
    std::uint8_t& operator[](std::size_t i) { return data_[i]; }
    std::uint8_t operator[](std::size_t i) const { return data_[i]; }
    std::size_t size() const { return size_; }

    void resize(std::size_t size) {
        if (size > capacity_) {
            std::size_t capacity = size > 2 * capacity_ ? size : 2 * capacity_;
            auto grown = std::make_unique<std::uint8_t[]>(capacity);
            std::memcpy(grown.get(), data_, size_);
            heap_ = std::move(grown);
            data_ = heap_.get();
            capacity_ = capacity;
        }
        if (size > size_)
            std::memset(data_ + size_, 0, size - size_);
        size_ = size;
    }

private:
    static constexpr std::size_t kInline = 240;
    std::uint8_t inline_[kInline];
    std::unique_ptr<std::uint8_t[]> heap_;
    std::uint8_t* data_ = inline_;
    std::size_t size_ = 0;
    std::size_t capacity_ = kInline;
};

class SSLexConsumer : public SSExceptionPresent {
public:
    static constexpr std::uint32_t kStartOfInput = 0xFFFFFFFF;
    static constexpr std::uint32_t kTail = 16;
    enum Type : std::uint32_t { kSingleByte = 0, kWide = 1, kDoubleByte = 2 };

    SSLexConsumer();
    SSLexConsumer(const SSLexConsumer&) = delete;
    SSLexConsumer& operator=(const SSLexConsumer&) = delete;
    virtual ~SSLexConsumer() = default;

    // Reads one character into current(); 0 at the end of the input. The
    // common case, a wide character inside the buffer, is read inline.
    int next() {
        if (type_ == kWide && !endOfData_ && !firstRead_ && index_ < end_ && end_ - index_ >= 2) {
            const std::uint8_t* p = buffer_.data() + index_;
            current_ = static_cast<std::uint32_t>(p[0] | (p[1] << 8));
            index_ += 2;
            ++consumed_;
            CountCharacter(current_, lineDelta_, offset_);
            return 1;
        }
        return nextSlow();
    }

    SSLexMark mark() const { return {index_, lineDelta_, offset_}; }

    // next() for a scan loop, on copies of the position: while it is active
    // (wide text, no byte-order mark or end of data pending, no shift to
    // apply) it reads what next() would read inline from the buffer, and
    // stops where next() would take its slow road. Begun from the consumer
    // and put back into it before anything else uses the consumer; the
    // characters read and the last of them are settled only then.
    struct WideRun {
        const std::uint8_t* data;
        std::uint32_t start;
        std::uint32_t index;
        // A whole character lies at index while index is below it; 0 when
        // the run is not active.
        std::uint32_t limit;
        std::uint32_t lineDelta;
        std::uint32_t offset;

        bool more() const { return index < limit; }
        // Only while more().
        std::uint32_t peek() const {
            if constexpr (std::endian::native == std::endian::little) {
                std::uint16_t unit;
                std::memcpy(&unit, data + index, sizeof unit);
                return unit;
            } else {
                return static_cast<std::uint32_t>(data[index] | (data[index + 1] << 8));
            }
        }
        // Only while more(), over a character other than a line feed.
        void skip() {
            index += 2;
            ++offset;
        }
        // Only while more().
        std::uint32_t take() {
            const std::uint32_t c = peek();
            index += 2;
            CountCharacter(c, lineDelta, offset);
            return c;
        }
        SSLexMark mark() const { return {index, lineDelta, offset}; }
    };
    WideRun beginWideRun() const {
        const bool active = type_ == kWide && !endOfData_ && !firstRead_ && shift_ == 0;
        return {buffer_.data(), index_, index_, active && end_ > 0 ? end_ - 1 : 0,
                lineDelta_,     offset_};
    }
    void endWideRun(const WideRun& run) {
        if (run.index != run.start) {
            current_ = static_cast<std::uint32_t>(run.data[run.index - 2] |
                                                  (run.data[run.index - 1] << 8));
            consumed_ += (run.index - run.start) / 2;
        }
        index_ = run.index;
        lineDelta_ = run.lineDelta;
        offset_ = run.offset;
    }
    void flushTo(const SSLexMark& mark) {
        index_ = mark.index;
        lexemeStart_ = mark.index;
        lexemeLine_ += mark.lineDelta;
        lexemeOffset_ = mark.offset;
        offset_ = mark.offset;
        lineDelta_ = 0;
        if (index_ < end_)
            endOfData_ = false;
    }
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
    // The buffer moves when a refill grows it: hold offsets, not addresses.
    const std::uint8_t* bufferData() const { return buffer_.data(); }
    bool nativeOrder() const { return nativeOrder_; }
    bool firstReadPending() const { return firstRead_ != 0; }
    // All of the input is wide text in the buffer, followed by at least
    // kTail readable bytes, and a refill brings nothing.
    bool wholeWide() const { return whole_ && type_ == kWide && shift_ == 0 && (end_ & 1) == 0; }
    // Bytes of one character of this consumer's text.
    std::uint32_t characterWidth() const { return type_ == kWide ? 2 : 1; }

    // The lexeme of the text from lexemeStart to mark, then flushTo(mark).
    SSLexLexeme* completeLexeme(std::uint32_t token, const SSLexMark& mark) {
        // A mark behind the lexeme start (only a damaged table can make one)
        // gives an empty text rather than a negative length.
        std::uint32_t stop = mark.index < lexemeStart_ ? lexemeStart_ : mark.index;
        SSLexLexeme* lexeme =
            SSLexLexeme::create(buffer_.data() + lexemeStart_, stop - lexemeStart_, type_ != kWide,
                                token, lexemeLine_, lexemeOffset_, bufferBase_ + lexemeStart_);
        flushTo(mark);
        return lexeme;
    }
    // The unmatched text from lexemeStart to index with token 0, then resync().
    SSLexLexeme* errorLexeme();
    // A startOfLine lexeme leaves its leading newline to the previous line.
    void skipLeadingNewline(SSLexMark& mark);

protected:
    // The lexer's scan of whole wide text reads and moves the position itself.
    friend class SSLex;

    int nextSlow();

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
    SSLexBuffer buffer_;
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
    bool whole_ = false;
};

// A consumer over a copy of a wide text; it never refills.
class SSLexStringConsumer : public SSLexConsumer {
public:
    explicit SSLexStringConsumer(std::u16string_view text);
    // The text up to its first null character.
    explicit SSLexStringConsumer(const char16_t* text);
    // Starts over on a copy of text, as a new consumer would; the buffer's
    // room stays.
    void assign(std::u16string_view text);
    std::uint32_t refill() override { return 0; }
};

} // namespace tervane
