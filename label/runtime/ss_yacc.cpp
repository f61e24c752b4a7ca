#include "label/runtime/ss_yacc.h"

#include <new>

#include "label/runtime/ss_pool.h"

namespace tervane {

namespace {

constexpr std::uint32_t kQueueGrowth = 32;
constexpr std::uint32_t kNoPosition = 0xFFFFFFFF;
// A damaged table can reduce or recover for ever without reading input; a
// real one needs far fewer steps between two shifts than this.
constexpr std::uint64_t kStepsWithoutShift = 4096;

} // namespace

void SSYaccLookaheadQueue::add(const SSLexToken& token) {
    if (tail_ == capacity_) {
        if (head_ > 0) {
            for (std::uint32_t i = 0; i < count_; ++i)
                items_[i] = std::move(items_[head_ + i]);
            head_ = 0;
            tail_ = count_;
        } else {
            std::unique_ptr<SSLexToken[]> items;
            try {
                items.reset(new SSLexToken[capacity_ + kQueueGrowth]);
            } catch (const std::bad_alloc&) {
                throw SSExceptionOutOfStorage();
            }
            for (std::uint32_t i = 0; i < count_; ++i)
                items[i] = std::move(items_[i]);
            items_ = std::move(items);
            capacity_ += kQueueGrowth;
        }
    }
    items_[tail_++] = token;
    ++count_;
}

SSLexToken SSYaccLookaheadQueue::take() {
    if (count_ == 0)
        return {};
    --count_;
    return std::move(items_[head_++]);
}

void SSYaccLookaheadQueue::clear() {
    for (std::uint32_t i = 0; i < count_; ++i)
        items_[head_ + i].clear();
    head_ = tail_ = count_ = 0;
}

const SSLexToken* SSYaccLookaheadQueue::at(std::uint32_t position) const {
    return position < count_ ? &items_[head_ + position] : nullptr;
}

SSYacc::SSYacc(SSLex* lex, const SSYaccTable* table) : lex_(lex), table_(table) {
    static constexpr std::uint8_t kEof[] = {'e', 0, 'o', 0, 'f', 0};
    eofLexeme_ = SSLexLexeme::create(kEof, sizeof kEof, false, SSYaccTable::kEofToken, 0xFFFFFFFF,
                                     0xFFFFFFFF, 0);
    stack_.push(0);
    pool_ = SSYaccElementPool::create();
    if (table_) {
        const SSYaccTable::Data& data = table_->data();
        if (!data.actionSteps.empty())
            actionSteps_ = data.actionSteps.data();
        if (!data.gotoSlots.empty())
            gotoSlots_ = data.gotoSlots.data();
        productions_ = data.productions.data();
    }
}

SSYacc::~SSYacc() {
    // Elements still held go back to the pool later, and the last one frees it.
    pool_->abandon();
}

void SSYacc::reset() {
    errorSeen_ = false;
    abort_ = false;
    state_ = 0;
    shiftsSinceError_ = 0;
    lookahead_.clear();
    eofSeen_ = false;
    production_ = 0;
    conflictLexeme_ = nullptr;
    productionSize_ = 0;
    queue_.clear();
    action_ = SSYaccAction::error;
    queuePosition_ = 0;
    lhs_ = 0;
    lookaheadList_ = nullptr;
    current_ = nullptr;
    recoveryHeld_ = nullptr;
    result_ = nullptr;
    // Any entry in state 0 without lexeme or element serves as the bottom.
    if (stack_.count() > 1)
        stack_.pop(stack_.count() - 1);
    if (stack_.count() == 1) {
        const SSYaccStackEntry& bottom = stack_.top();
        if (bottom.state != 0 || bottom.token.present || bottom.element)
            stack_.pop();
    }
    if (stack_.count() == 0)
        stack_.push(0);
}

int SSYacc::parse() {
    if (!table_)
        raise(ss_error::kMissingTable, "SSYacc0109e: setTable missing, required");
    if (lazy_ && lex_) {
        if (int result; runLazy(result))
            return result;
    } else if (!readLookahead(true)) {
        return 1;
    }
    std::uint64_t shifts = 0;
    std::uint64_t steps = 0;
    while (!abort_) {
        if (++steps > kStepsWithoutShift + 2 * shifts)
            raise(ss_error::kParseFailed, "SSYacc0102e: Parse failed, invalid table");
        switch (action_) {
        case SSYaccAction::shift: {
            if (lazy_) {
                stack_.push(state_, lookahead_.take(), nullptr);
                current_ = nullptr;
            } else {
                SSYaccStackElement* element = shift(lookahead_.lexeme());
                if (!element)
                    return 1;
                element->lexeme = lookahead_.lexeme();
                element->state = state_;
                stack_.push(state_, lookahead_.take(), element);
                current_ = element;
            }
            if (!readLookahead(true))
                return 1;
            ++shiftsSinceError_;
            ++shifts;
            steps = 0;
            break;
        }
        case SSYaccAction::reduce: {
            SSYaccStackElement* element = nullptr;
            if (production_ < 64 && (plainProductions_ >> production_ & 1)) {
                if (!lazy_ && !(element = stackElement()))
                    return 1;
            } else if (!(element = reduce(production_, productionSize_))) {
                return 1;
            } else if (element == &blank_) {
                element = nullptr;
            }
            if (productionSize_ < stack_.count()) {
                stack_.pop(productionSize_);
            } else {
                // Pops up to the bottom and fails there, as one pop at a time
                // would; the new element is held, so that the failure frees it.
                SSRef<SSYaccStackElement> held = element;
                for (std::uint32_t i = 0; i < productionSize_; ++i) {
                    stack_.top();
                    stack_.pop();
                }
                held.detach();
            }
            state_ = stack_.top().state;
            const std::uint32_t target = gotoTarget(state_, lhs_);
            if (target == SSYaccTable::kNoGoto) {
                SSRef<SSYaccStackElement> held = element;
                raise(ss_error::kInvalidGoto, "SSYacc0107e: Invalid goto on %ld",
                      static_cast<long>(lhs_));
            }
            state_ = target;
            if (element)
                element->state = state_;
            if (element)
                stack_.push(state_, SSLexTokenData(), element);
            else
                stack_.push(state_);
            current_ = element;
            findAction(state_, lookahead_.parseToken());
            break;
        }
        case SSYaccAction::error:
            errorSeen_ = true;
            recoveryHeld_ = current_;
            if (error(state_, lookahead_.lexeme()))
                return 1;
            shiftsSinceError_ = 0;
            break;
        case SSYaccAction::accept:
            // A lazy parser made no element for the last push, or not yet.
            if (!current_)
                current_ = elementOf(stack_.top());
            result_ = current_;
            return wasError() ? 1 : 0;
        case SSYaccAction::lookahead:
            if (!resolveLookahead())
                return 1;
            break;
        default:
            raise(ss_error::kParseFailed, "SSYacc0102e: Parse failed, invalid table");
        }
    }
    return 1;
}

void SSYacc::readToken(SSLexToken& out) {
    if (lazy_) {
        if (!lex_)
            raise(ss_error::kMissingLex, "SSYacc0110e: setLex missing, required");
        if (lex_->nextToken(out))
            return;
    } else if (SSLexLexeme* lexeme = nextLexeme()) {
        out.setObject(lexeme);
        return;
    }
    eofSeen_ = true;
    out.setObject(eofLexeme_.get());
}

bool SSYacc::readLookahead(bool setAction) {
    if (queue_.count()) {
        lookahead_ = queue_.take();
    } else {
        if (eofSeen_)
            raise(ss_error::kReadPastEof, "SSYacc0103e: Attempted read past eof");
        readToken(lookahead_);
    }
    if (!lazy_ && lookaheadRead(lookahead_.lexeme())) {
        abort_ = true;
        return false;
    }
    if (setAction)
        findAction(state_, lookahead_.parseToken());
    return true;
}

bool SSYacc::resolveLookahead() {
    const SSLexExpressionList& list = *lookaheadList_;
    queuePosition_ = 0;
    std::uint32_t automaton = 0;
    SSLexToken token = lookahead_;
    bool eofFed = lookahead_.object() == eofLexeme_.get();
    for (;;) {
        std::uint32_t next = list.transition(automaton, token.parseToken());
        if (next == SSLexExpressionList::kNoState)
            break;
        automaton = next;
        const SSLexFinalState& record = list.finalState(automaton);
        if (record.flags & SSLexFinalState::final) {
            if (record.flags & 0x100) {
                if (record.token >= table_->productionCount())
                    raise(ss_error::kParseFailed, "SSYacc0102e: Parse failed, invalid table");
                const SSYaccProduction& production = table_->production(record.token);
                action_ = SSYaccAction::reduce;
                production_ = record.token;
                productionSize_ = production.size;
                lhs_ = production.lhs;
            } else {
                if (record.token >= table_->stateCount())
                    raise(ss_error::kParseFailed, "SSYacc0102e: Parse failed, invalid table");
                action_ = SSYaccAction::shift;
                state_ = record.token;
            }
            return true;
        }
        if (queuePosition_ != kNoPosition && queuePosition_ < queue_.count()) {
            token = *queue_.at(queuePosition_++);
            continue;
        }
        queuePosition_ = kNoPosition;
        // Behind the end of the input there is no lexeme to feed.
        if (eofFed)
            break;
        readToken(token);
        eofFed = eofSeen_;
        queue_.add(token);
    }
    errorSeen_ = true;
    conflictLexeme_ = token.lexeme();
    return lookaheadError(state_, lookahead_.lexeme(), conflictLexeme_.get()) == 0;
}

SSLexLexeme* SSYacc::nextLexeme() {
    if (!lex_)
        raise(ss_error::kMissingLex, "SSYacc0110e: setLex missing, required");
    return lex_->nextLexeme();
}

SSYaccStackElement* SSYacc::stackElement() {
    return newElement<SSYaccStackElement>();
}

SSYaccStackElement* SSYacc::shift(SSLexLexeme*) {
    return stackElement();
}

int SSYacc::lookaheadRead(SSLexLexeme*) {
    return 0;
}

int SSYacc::lookaheadError(std::uint32_t state, SSLexLexeme* lookahead, SSLexLexeme*) {
    return error(state, lookahead);
}

int SSYacc::error(std::uint32_t, SSLexLexeme*) {
    const SSYaccTable& table = *table_;
    SSSetArray sync(64, 64);
    for (std::size_t depth = 0; depth < stack_.count(); ++depth) {
        const SSYaccRow& row = table.row(stack_.at(depth).state);
        if (row.flags & (SSYaccRow::syncMarked | SSYaccRow::syncAll)) {
            for (std::uint32_t i = 0; i < row.actionCount; ++i) {
                SSYaccEntry entry = row.action(i);
                if ((row.flags & SSYaccRow::syncAll) || (entry.value & kSyncEntryBit))
                    sync.add(entry.symbol);
            }
        }
        if (row.flags & SSYaccRow::hasError) {
            const SSYaccRow& errorRow = table.row(row.errorState);
            for (std::uint32_t i = 0; i < errorRow.actionCount; ++i)
                sync.add(errorRow.action(i).symbol);
        }
    }
    if (sync.empty()) {
        if (endOnFailedRecovery_)
            return 1;
        raise(ss_error::kNoValidToken, "SSYacc0105e: Error token failed, no valid token");
    }
    while (!sync.contains(lookahead_.parseToken())) {
        if (queue_.count() == 0 && eofSeen_) {
            if (endOnFailedRecovery_)
                return 1;
            raise(ss_error::kErrorTokenEof, "SSYacc0106e: Error token failed, eof");
        }
        if (!readLookahead(false))
            return 1;
    }
    std::uint32_t token = lookahead_.parseToken();
    for (;;) {
        const SSYaccRow& row = table.row(state_);
        if (row.flags & SSYaccRow::hasError) {
            std::uint32_t before = state_;
            state_ = row.errorState;
            findAction(row.errorState, token);
            if (action_ != SSYaccAction::error) {
                SSRef<SSYaccStackElement> element = stackElement();
                SSLexToken errorToken;
                errorToken.setObject(
                    SSLexLexeme::create(u"%error", SSYaccTable::kErrorToken, 0, 0));
                element->lexeme = errorToken.object();
                element->state = row.errorState;
                current_ = element.get();
                stack_.push(row.errorState, errorToken.take(), element.get());
                return 0;
            }
            state_ = before;
        }
        if (row.flags & SSYaccRow::syncAll) {
            findAction(state_, token);
            if (action_ != SSYaccAction::error)
                return 0;
        } else if (row.flags & SSYaccRow::syncMarked) {
            for (std::uint32_t i = 0; i < row.actionCount; ++i) {
                if (row.action(i).symbol == token) {
                    findAction(state_, token);
                    return 0;
                }
            }
        }
        stack_.pop();
        state_ = stack_.top().state;
    }
}

SSYaccStackEntry& SSYacc::entryFromProduction(std::int32_t index) {
    std::int64_t depth = std::int64_t{productionSize_} - index - 1;
    if (depth < 0 || static_cast<std::uint64_t>(depth) >= stack_.count())
        raise(ss_error::kInvalidElementIndex,
              "SSYacc0108e: Invalid index on elementFromProduction, %ld", static_cast<long>(index));
    return stack_.at(static_cast<std::size_t>(depth));
}

SSYaccStackElement* SSYacc::elementOf(SSYaccStackEntry& entry) {
    if (entry.element)
        return entry.element;
    SSYaccStackElement* element = stackElement();
    if (!element)
        return nullptr;
    element->addRef();
    entry.element = element;
    stack_.holding(entry);
    element->state = entry.state;
    if (entry.token.present) {
        element->lexeme = entry.token.lexeme();
        stack_.holding(entry);
    }
    return element;
}

SSYaccStackElement* SSYacc::elementFromProduction(std::int32_t index) {
    return elementOf(entryFromProduction(index));
}

std::u16string_view SSYacc::elementText(std::int32_t index) {
    SSYaccStackEntry& entry = entryFromProduction(index);
    // A made element's lexeme is the one its holders may have changed.
    if (entry.element)
        return entry.element->lexeme ? entry.element->lexeme->wideText() : std::u16string_view();
    return entry.token.wideText();
}

} // namespace tervane
