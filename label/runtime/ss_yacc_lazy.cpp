// The shift-reduce loop of a lazy parser: lexemes come as values straight
// into the lookahead, the state stays in a local, and the members that a
// reduction or the general loop reads are written only for them.
#include "label/runtime/ss_yacc.h"

namespace tervane {

namespace {

// As in the general loop: a damaged table can reduce for ever.
constexpr std::uint64_t kStepsWithoutShift = 4096;

} // namespace

void SSYacc::readLazy() {
    if (eofSeen_)
        raise(ss_error::kReadPastEof, "SSYacc0103e: Attempted read past eof");
    SSLexTokenData data;
    switch (lex_->nextView(data)) {
    case 1:
        lookahead_.adopt(data);
        break;
    case 0:
        eofSeen_ = true;
        lookahead_.setObject(eofLexeme_.get());
        break;
    default:
        readToken(lookahead_);
        break;
    }
}

bool SSYacc::runLazy(int& result) {
    // Lexemes left in the queue by lookahead automata come first.
    if (queue_.count()) {
        readLookahead(true);
        return false;
    }
    readLazy();
    // The lookahead's token changes only where it is read.
    std::uint32_t token = lookahead_.parseToken();
    const SSYaccProduction* const productions = productions_;
    std::uint32_t state = state_;
    std::uint64_t shifts = 0;
    std::uint64_t steps = 0;
    for (;;) {
        if (++steps > kStepsWithoutShift + 2 * shifts)
            raise(ss_error::kParseFailed, "SSYacc0102e: Parse failed, invalid table");
        const std::uint32_t value = step(state, token);
        const std::uint32_t argument = value & kActionArgumentMask;
        switch (StepKind(value)) {
        case SSYaccAction::shift:
            state = argument;
            stack_.push(state, lookahead_.take(), nullptr);
            current_ = nullptr;
            readLazy();
            token = lookahead_.parseToken();
            ++shiftsSinceError_;
            ++shifts;
            steps = 0;
            break;
        case SSYaccAction::reduce: {
            const SSYaccProduction& production = productions[argument];
            const std::uint32_t size = production.size;
            action_ = SSYaccAction::reduce;
            production_ = argument;
            productionSize_ = size;
            lhs_ = production.lhs;
            SSYaccStackElement* element = nullptr;
            if (argument >= 64 || !(plainProductions_ >> argument & 1)) {
                state_ = state;
                if (!(element = reduce(argument, size))) {
                    result = 1;
                    return true;
                }
                if (element == &blank_)
                    element = nullptr;
                // A reduction may have asked for the lookahead's lexeme and changed it.
                token = lookahead_.parseToken();
            }
            if (size < stack_.count()) {
                stack_.pop(size);
            } else {
                // Pops up to the bottom and fails there, as the general loop.
                SSRef<SSYaccStackElement> held = element;
                for (std::uint32_t i = 0; i < size; ++i) {
                    stack_.top();
                    stack_.pop();
                }
                held.detach();
            }
            const std::uint32_t target = gotoTarget(stack_.top().state, lhs_);
            if (target == SSYaccTable::kNoGoto) {
                SSRef<SSYaccStackElement> held = element;
                state_ = stack_.top().state;
                raise(ss_error::kInvalidGoto, "SSYacc0107e: Invalid goto on %ld",
                      static_cast<long>(lhs_));
            }
            state = target;
            if (element) {
                element->state = state;
                stack_.push(state, SSLexTokenData(), element);
            } else {
                stack_.push(state);
            }
            current_ = element;
            break;
        }
        default:
            // Accepting, errors and lookahead automata are the general loop's.
            state_ = state;
            findAction(state, token);
            return false;
        }
    }
}

} // namespace tervane
