#include "label/runtime/ss_lex_consumer.h"

#include <bit>
#include <cstdint>
#include <cstring>
#include <new>

#include "label/runtime/rcparsedbcsinfo.h"
#include "label/runtime/ss_lex_lexeme.h"

namespace tervane {

SSLexConsumer::SSLexConsumer() : dbcsInfo_(rcparsedbcsinfo::instance()) {}

int SSLexConsumer::nextSlow() {
    if (endOfData_)
        return 0;
    if (firstRead_) {
        current_ = kStartOfInput;
        if (type_ == kWide && index_ + 2 <= end_) {
            std::uint8_t b0 = buffer_[index_], b1 = buffer_[index_ + 1];
            if (b0 == 0xFE && b1 == 0xFF) {
                nativeOrder_ = false;
                index_ += 2;
            } else if (b0 == 0xFF && b1 == 0xFE) {
                index_ += 2;
            }
        }
        firstRead_ = 0;
        return 1;
    }
    if (index_ >= end_) {
        std::uint32_t brought = refill();
        if (brought == 0) {
            endOfData_ = true;
            return 0;
        }
        end_ += brought;
    }
    const std::uint8_t* p = buffer_.data() + index_;
    switch (type_) {
    case kWide:
        // Both byte orders assemble low byte first on the little-endian
        // machines this runs on; the trailing zeros cover an odd last byte.
        current_ = static_cast<std::uint32_t>(p[0] | (p[1] << 8));
        index_ += 2;
        break;
    case kDoubleByte:
        if (dbcsInfo_.isLeadByte(p[0])) {
            current_ = static_cast<std::uint32_t>(p[0] | (p[1] << 8));
            index_ += 2;
            ++offset_;
        } else {
            current_ = p[0];
            index_ += 1;
        }
        break;
    default:
        current_ = p[0];
        index_ += 1;
        break;
    }
    // A character cut by the end of the data reads no further than it.
    if (index_ > end_)
        index_ = end_;
    ++consumed_;
    CountCharacter(current_, lineDelta_, offset_);
    return 1;
}

void SSLexConsumer::resync() {
    lexemeStart_ = index_;
    lexemeLine_ += lineDelta_;
    lexemeOffset_ = offset_;
    lineDelta_ = 0;
}

SSLexLexeme* SSLexConsumer::errorLexeme() {
    SSLexLexeme* lexeme =
        SSLexLexeme::create(buffer_.data() + lexemeStart_, index_ - lexemeStart_, type_ != kWide, 0,
                            lexemeLine_, lexemeOffset_, bufferBase_ + lexemeStart_);
    resync();
    return lexeme;
}

void SSLexConsumer::skipLeadingNewline(SSLexMark& mark) {
    std::uint32_t width = characterWidth();
    lexemeStart_ = mark.index - lexemeStart_ < width ? mark.index : lexemeStart_ + width;
    ++lexemeLine_;
    lexemeOffset_ = 1;
    --mark.lineDelta;
}

void SSLexConsumer::appendToBuffer(const std::uint8_t* bytes, std::uint32_t count) {
    if (count > UINT32_MAX - 2 - end_)
        throw SSExceptionOutOfStorage();
    try {
        buffer_.resize(end_ + count + 2);
    } catch (const std::bad_alloc&) {
        throw SSExceptionOutOfStorage();
    }
    if (count)
        std::memcpy(buffer_.data() + end_, bytes, count);
    buffer_[end_ + count] = 0;
    buffer_[end_ + count + 1] = 0;
    length_ = end_ + count;
}

SSLexStringConsumer::SSLexStringConsumer(std::u16string_view text) {
    assign(text);
}

void SSLexStringConsumer::assign(std::u16string_view text) {
    // A failure leaves the consumer as it was; positions are 32-bit byte
    // offsets, as in the original.
    if (text.size() > (UINT32_MAX - kTail) / 2)
        throw SSExceptionOutOfStorage();
    auto bytes = static_cast<std::uint32_t>(text.size() * 2);
    try {
        buffer_.resize(bytes + kTail);
    } catch (const std::bad_alloc&) {
        throw SSExceptionOutOfStorage();
    }
    type_ = kWide;
    firstRead_ = 0xFFFFFFFF;
    lexemeLine_ = 0;
    shift_ = 0;
    bufferBase_ = 0;
    lexemeStart_ = 0;
    index_ = 0;
    lexemeOffset_ = 0;
    current_ = 0;
    endOfData_ = false;
    consumed_ = 0;
    lineDelta_ = 1;
    offset_ = 1;
    nativeOrder_ = true;
    whole_ = true;
    if constexpr (std::endian::native == std::endian::little) {
        if (bytes)
            std::memcpy(buffer_.data(), text.data(), bytes);
    } else {
        for (std::size_t i = 0; i < text.size(); ++i) {
            buffer_[2 * i] = static_cast<std::uint8_t>(text[i] & 0xFF);
            buffer_[2 * i + 1] = static_cast<std::uint8_t>(text[i] >> 8);
        }
    }
    buffer_[bytes] = 0;
    buffer_[bytes + 1] = 0;
    end_ = bytes;
    length_ = bytes;
    if (text.empty())
        endOfData_ = true;
}

SSLexStringConsumer::SSLexStringConsumer(const char16_t* text)
    : SSLexStringConsumer(text ? std::u16string_view(text) : std::u16string_view()) {}

} // namespace tervane
