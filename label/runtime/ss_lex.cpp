#include "label/runtime/ss_lex.h"

namespace tervane {

SSLex::SSLex(SSLexConsumer* consumer, const SSLexTable* table)
    : table_(table), consumer_(consumer) {
    if (table_) {
        currentList_ = table_->expressionList(0);
        listStack_.push(currentList_);
    }
}

void SSLex::reset() {
    state_ = 0;
    lexemeCount_ = 0;
    contextMark_ = {};
    if (listStack_.count())
        listStack_.pop(listStack_.count());
    currentList_ = nullptr;
    if (table_) {
        currentList_ = table_->expressionList(0);
        listStack_.push(currentList_);
    }
}

SSLexLexeme* SSLex::nextLexeme() {
    SSLexToken token;
    if (!nextToken(token))
        return nullptr;
    SSLexLexeme* lexeme = token.lexeme();
    // Handed on with the count it had before the token took it.
    lexeme->addRef();
    token.clear();
    lexeme->release(false);
    return lexeme;
}

bool SSLex::nextToken(SSLexToken& out) {
    if (!table_ || !consumer_ || !currentList_)
        raise(ss_error::kMissingTableOrConsumer, "SSLex0107e: Table or consumer missing, required");
    SSLexConsumer& consumer = *consumer_;
    for (;;) {
        const SSLexExpressionList& list = *currentList_;
        const SSLexFinalState* const finals = list.finalStates();
        const std::uint32_t* const direct = list.directMoves();
        state_ = 0;
        bool read = false;
        bool startRead = consumer.firstReadPending();
        // The accepting record passed last, by address: the list outlives the
        // scan. Its mark is kept in scalars, which stay in registers.
        const SSLexFinalState* acceptedRecord = finals;
        bool marked = acceptedRecord->token != 0;
        SSLexMark start = consumer.mark();
        std::uint32_t acceptedIndex = marked ? start.index : 0;
        std::uint32_t acceptedLine = marked ? start.lineDelta : 0;
        std::uint32_t acceptedOffset = marked ? start.offset : 0;
        std::uint32_t state = 0;
        SSLexConsumer::WideRun run = consumer.beginWideRun();
        for (;;) {
            std::uint32_t c;
            if (run.more()) {
                c = run.take();
            } else {
                consumer.endWideRun(run);
                const int got = consumer.next();
                run = consumer.beginWideRun();
                if (!got)
                    break;
                // Marks move only when a refill has shifted the buffer.
                if (const std::uint32_t shift = consumer.shift(); shift != 0) {
                    acceptedIndex -= shift;
                    consumer.adjust(contextMark_, false);
                }
                c = consumer.current();
            }
            read = true;
            const std::uint32_t next =
                direct && c < SSLexExpressionList::kDirect
                    ? direct[std::size_t{state} * SSLexExpressionList::kDirect + c]
                    : list.searchRow(state, c);
            if (next == SSLexExpressionList::kNoState)
                break;
            if (next == state && direct) {
                // A state that loops on itself, as on the letters of a text:
                // its loop is run through at once, and the accepting record
                // below is taken at its end, where the last step would take it.
                const std::uint32_t* row =
                    direct + std::size_t{state} * SSLexExpressionList::kDirect;
                while (run.more()) {
                    const std::uint32_t ahead = run.peek();
                    if (ahead >= SSLexExpressionList::kDirect || ahead == 10 || row[ahead] != state)
                        break;
                    run.skip();
                }
            }
            state = next;
            const SSLexFinalState& record = finals[state];
            if (record.flags & (SSLexFinalState::final | SSLexFinalState::contextStart)) {
                if (record.flags & SSLexFinalState::final) {
                    acceptedIndex = run.index;
                    acceptedLine = run.lineDelta;
                    acceptedOffset = run.offset;
                    acceptedRecord = &record;
                    marked = true;
                }
                if (record.flags & SSLexFinalState::contextStart)
                    contextMark_ = run.mark();
            }
        }
        SSLexMark acceptedMark{acceptedIndex, acceptedLine, acceptedOffset};
        consumer.endWideRun(run);
        state_ = state;
        consumer.adjust(acceptedMark, false);
        consumer.adjust(contextMark_, true);
        if (!read)
            return false;
        SSLexTokenData data;
        if (settle(*acceptedRecord, acceptedMark, marked, startRead, data)) {
            out.adopt(data);
            return true;
        }
    }
}

bool SSLex::settle(const SSLexFinalState& accepted, SSLexMark acceptedMark, bool marked,
                   bool startRead, SSLexTokenData& out) {
    SSLexConsumer& consumer = *consumer_;
    if ((accepted.flags & SSLexFinalState::endOfLine) && acceptedMark.lineDelta > 0) {
        std::uint32_t width = consumer.characterWidth();
        acceptedMark.index = acceptedMark.index - consumer.lexemeStart() < width
                                 ? consumer.lexemeStart()
                                 : acceptedMark.index - width;
        --acceptedMark.lineDelta;
    }
    // An empty match that did not even take the start of the input would
    // be found again at the same place for ever: only damaged tables
    // accept one, and it counts as no match.
    bool accepts = (accepted.flags & (SSLexFinalState::ignore | SSLexFinalState::final)) &&
                   marked && (startRead || acceptedMark.index > consumer.lexemeStart());

    SSLexLexeme* lexeme = nullptr;
    if (accepts && (accepted.flags & SSLexFinalState::ignore)) {
        if (accepted.flags & (SSLexFinalState::pop | SSLexFinalState::push))
            changeLists(accepted);
        lexeme = ignoreLexeme(consumer, accepted.token, acceptedMark);
        if (!lexeme)
            return false;
    } else if (!accepts) {
        lexeme = invalidToken(consumer);
        if (lexeme) {
            out.setObject(lexeme);
            return true;
        }
        consumer.resync();
        return false;
    } else {
        if (accepted.flags & (SSLexFinalState::pop | SSLexFinalState::push))
            changeLists(accepted);
        if ((accepted.flags & SSLexFinalState::startOfLine) && consumer.lexemeLine() != 0 &&
            consumer.lexemeOffset() != 0)
            consumer.skipLeadingNewline(acceptedMark);
        if (views_ && !(accepted.flags & SSLexFinalState::keyword)) {
            // What the default completeLexeme would copy, left where it is.
            const std::uint32_t start = consumer.lexemeStart();
            const std::uint32_t stop = acceptedMark.index < start ? start : acceptedMark.index;
            out = {&consumer,
                   accepted.token,
                   (accepted.flags & SSLexFinalState::setUserValue) ? accepted.userValue : 0,
                   start,
                   stop - start,
                   consumer.lexemeLine(),
                   consumer.lexemeOffset(),
                   consumer.bufferBase() + start,
                   consumer.type() != SSLexConsumer::kWide,
                   true,
                   nullptr};
            consumer.flushTo(acceptedMark);
            ++lexemeCount_;
            return true;
        }
        lexeme = completeLexeme(consumer, accepted.token, acceptedMark);
        if (!lexeme)
            return false;
    }
    // Held while the lookup may raise, so that an error frees it.
    SSRef<SSLexLexeme> held = lexeme;
    if (accepted.flags & SSLexFinalState::setUserValue)
        lexeme->setUserValue(accepted.userValue);
    if (accepted.flags & SSLexFinalState::keyword)
        keywordLookup(*lexeme, accepted.keywordIndex, consumer.type());
    out.setObject(lexeme);
    ++lexemeCount_;
    return true;
}

void SSLex::changeLists(const SSLexFinalState& accepted) {
    bool pop = accepted.flags & SSLexFinalState::pop;
    bool push = accepted.flags & SSLexFinalState::push;
    if (pop)
        listStack_.pop();
    if (push) {
        listStack_.push(table_->expressionList(accepted.pushIndex));
        currentList_ = listStack_.top();
    } else if (pop) {
        currentList_ = listStack_.top();
    }
}

SSLexLexeme* SSLex::invalidToken(SSLexConsumer& consumer) {
    SSRef<SSLexLexeme> lexeme = consumer.errorLexeme();
    raise(ss_error::kInvalidToken, "SSLex0105e: Invalid token, Line %ld, Offset %ld, %s",
          static_cast<long>(lexeme->line()), static_cast<long>(lexeme->offset()),
          lexeme->displayText().c_str());
}

const char* SSLex::tokenName(std::uint32_t) {
    return "SSLexTokenNotFound";
}

SSLexLexeme* SSLex::ignoreLexeme(SSLexConsumer& consumer, std::uint32_t, const SSLexMark& mark) {
    consumer.flushTo(mark);
    return nullptr;
}

SSLexLexeme* SSLex::completeLexeme(SSLexConsumer& consumer, std::uint32_t token,
                                   const SSLexMark& mark) {
    return consumer.completeLexeme(token, mark);
}

void SSLex::keywordLookup(SSLexLexeme& lexeme, std::uint32_t keywordIndex,
                          std::uint32_t consumerType) {
    table_->keywordLookup(keywordIndex, lexeme, consumerType);
}

} // namespace tervane
