// The scan of a consumer that holds all of its input as wide text: the
// position, line and offset live in locals for the whole lexeme, the end of
// the input is a comparison, and the runs of a looping state are passed eight
// characters at a time.
#include <cstdint>
#include <cstring>

#include "label/runtime/ss_lex.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace tervane {

namespace {

std::uint32_t Unit(const std::uint8_t* data, std::uint32_t index) {
    std::uint16_t unit;
    std::memcpy(&unit, data + index, sizeof unit);
    return unit;
}

// The first index from index below end (both even) whose unit is one of the
// stops, or end; the consumer's tail makes whole blocks of eight readable.
std::uint32_t RunEnd(const std::uint8_t* data, std::uint32_t index, std::uint32_t end,
                     const std::uint16_t* stops) {
    constexpr std::uint32_t kWidth = SSLexExpressionList::kStopWidth;
    static_assert(SSLexExpressionList::kLoopStops == 8 && kWidth * 2 == SSLexConsumer::kTail);
#if defined(__SSE2__)
    auto stop = [stops](std::uint32_t i) {
        return _mm_loadu_si128(reinterpret_cast<const __m128i*>(stops + i * kWidth));
    };
    for (; index < end; index += 16) {
        const __m128i units = _mm_loadu_si128(reinterpret_cast<const __m128i*>(data + index));
        const __m128i hit = _mm_or_si128(
            _mm_or_si128(
                _mm_or_si128(_mm_cmpeq_epi16(units, stop(0)), _mm_cmpeq_epi16(units, stop(1))),
                _mm_or_si128(_mm_cmpeq_epi16(units, stop(2)), _mm_cmpeq_epi16(units, stop(3)))),
            _mm_or_si128(
                _mm_or_si128(_mm_cmpeq_epi16(units, stop(4)), _mm_cmpeq_epi16(units, stop(5))),
                _mm_or_si128(_mm_cmpeq_epi16(units, stop(6)), _mm_cmpeq_epi16(units, stop(7)))));
        auto mask = static_cast<std::uint32_t>(_mm_movemask_epi8(hit));
        if (end - index < 16)
            mask &= (1u << (end - index)) - 1;
        if (mask)
            return index + static_cast<std::uint32_t>(__builtin_ctz(mask));
    }
    return end;
#else
    for (; index < end; index += 2) {
        const std::uint32_t c = Unit(data, index);
        for (std::uint32_t i = 0; i < SSLexExpressionList::kLoopStops; ++i)
            if (c == stops[i * kWidth])
                return index;
    }
    return end;
#endif
}

} // namespace

int SSLex::nextView(SSLexTokenData& out) {
    if (!views_ || !table_ || !consumer_ || !currentList_ || !consumer_->wholeWide())
        return -1;
    SSLexConsumer& consumer = *consumer_;
    const std::uint8_t* const data = consumer.buffer_.data();
    const std::uint32_t end = consumer.end_;
    for (;;) {
        const SSLexExpressionList& list = *currentList_;
        const std::uint32_t* const direct = list.directMoves();
        if (!direct)
            return -1;
        const SSLexFinalState* const finals = list.finalStates();
        if (consumer.endOfData_) {
            state_ = 0;
            return 0;
        }
        const bool startRead = consumer.firstReadPending();
        const SSLexFinalState* accepted = finals;
        const bool markedAtStart = accepted->token != 0;
        bool marked = markedAtStart;
        std::uint32_t lineDelta = consumer.lineDelta_;
        std::uint32_t offset = consumer.offset_;
        std::uint32_t acceptedIndex = markedAtStart ? consumer.index_ : 0;
        std::uint32_t acceptedLine = markedAtStart ? lineDelta : 0;
        std::uint32_t acceptedOffset = markedAtStart ? offset : 0;
        std::uint32_t c;
        if (startRead) {
            // Passes a byte-order mark and gives the start of the input.
            consumer.nextSlow();
            c = SSLexConsumer::kStartOfInput;
        } else if (consumer.index_ < end) {
            c = Unit(data, consumer.index_);
        } else {
            consumer.endOfData_ = true;
            state_ = 0;
            return 0;
        }
        const std::uint32_t first = consumer.index_;
        std::uint32_t index = startRead ? first : first + 2;
        if (!startRead)
            CountCharacter(c, lineDelta, offset);
        std::uint32_t state = 0;
        for (;;) {
            const std::uint32_t next =
                c < SSLexExpressionList::kDirect
                    ? direct[std::size_t{state} * SSLexExpressionList::kDirect + c]
                    : list.searchRow(state, c);
            if (next == SSLexExpressionList::kNoState)
                break;
            if (next == state) {
                if (const std::uint16_t* stops = list.loopStops(state)) {
                    // No line feed inside: only the offset moves.
                    const std::uint32_t stop = RunEnd(data, index, end, stops);
                    offset += (stop - index) / 2;
                    index = stop;
                }
            }
            state = next;
            const SSLexFinalState& record = finals[state];
            if (record.flags & (SSLexFinalState::final | SSLexFinalState::contextStart)) {
                if (record.flags & SSLexFinalState::final) {
                    acceptedIndex = index;
                    acceptedLine = lineDelta;
                    acceptedOffset = offset;
                    accepted = &record;
                    marked = true;
                }
                if (record.flags & SSLexFinalState::contextStart)
                    contextMark_ = {index, lineDelta, offset};
            }
            if (index >= end) {
                consumer.endOfData_ = true;
                break;
            }
            c = Unit(data, index);
            index += 2;
            CountCharacter(c, lineDelta, offset);
        }
        if (index != first) {
            consumer.current_ = Unit(data, index - 2);
            consumer.consumed_ += (index - first) / 2;
        }
        state_ = state;
        // A lexeme of the text, as settle would make it, without the rarer
        // cases it handles.
        constexpr std::uint32_t kRare = SSLexFinalState::ignore | SSLexFinalState::pop |
                                        SSLexFinalState::push | SSLexFinalState::endOfLine |
                                        SSLexFinalState::startOfLine | SSLexFinalState::keyword;
        const std::uint32_t flags = accepted->flags;
        const std::uint32_t lexemeStart = consumer.lexemeStart_;
        if ((flags & (kRare | SSLexFinalState::final)) == SSLexFinalState::final && marked &&
            (startRead || acceptedIndex > lexemeStart)) {
            const std::uint32_t stop = acceptedIndex < lexemeStart ? lexemeStart : acceptedIndex;
            out = {&consumer,
                   accepted->token,
                   (flags & SSLexFinalState::setUserValue) ? accepted->userValue : 0,
                   lexemeStart,
                   stop - lexemeStart,
                   consumer.lexemeLine_,
                   consumer.lexemeOffset_,
                   consumer.bufferBase_ + lexemeStart,
                   false,
                   true,
                   nullptr};
            consumer.flushTo({acceptedIndex, acceptedLine, acceptedOffset});
            ++lexemeCount_;
            return 1;
        }
        consumer.index_ = index;
        consumer.lineDelta_ = lineDelta;
        consumer.offset_ = offset;
        if (settle(*accepted, {acceptedIndex, acceptedLine, acceptedOffset}, marked, startRead,
                   out))
            return 1;
    }
}

} // namespace tervane
