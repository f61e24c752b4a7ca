#pragma once
// The shift-reduce parser. A grammar derives from SSYacc, makes its own stack
// elements in stackElement() and does its work in reduce().
#include <cstdint>
#include <memory>
#include <new>
#include <string_view>
#include <utility>

#include "label/runtime/ss_exception.h"
#include "label/runtime/ss_lex.h"
#include "label/runtime/ss_lex_lexeme.h"
#include "label/runtime/ss_lex_token.h"
#include "label/runtime/ss_lifo.h"
#include "label/runtime/ss_pool.h"
#include "label/runtime/ss_ref.h"
#include "label/runtime/ss_yacc_element.h"
#include "label/runtime/ss_yacc_stack.h"
#include "label/runtime/ss_yacc_table.h"

namespace tervane {

// Lexemes read ahead of the parser.
class SSYaccLookaheadQueue {
public:
    void add(const SSLexToken& token);
    // The entry at head, or an empty token when the queue is empty.
    SSLexToken take();
    const SSLexToken* at(std::uint32_t position) const;
    std::uint32_t count() const { return count_; }
    // Lets go of every entry; the room stays.
    void clear();

private:
    std::unique_ptr<SSLexToken[]> items_;
    std::uint32_t capacity_ = 0;
    std::uint32_t tail_ = 0;
    std::uint32_t head_ = 0;
    std::uint32_t count_ = 0;
};

class SSYacc : public SSExceptionPresent {
public:
    // Neither is owned; the caller keeps both alive while the parser runs.
    SSYacc(SSLex* lex, const SSYaccTable* table);
    SSYacc(const SSYacc&) = delete;
    SSYacc& operator=(const SSYacc&) = delete;

    // Back to the state of a new parser on the same lexer and table, for the
    // next input; what the parser keeps for reuse stays.
    void reset();

    // 0 after an accepted input without error, otherwise not 0. Runtime
    // errors are thrown as SSException.
    int parse();

    virtual bool wasError() { return errorSeen_; }
    virtual SSLexLexeme* nextLexeme();
    virtual SSYaccStackElement* stackElement();
    virtual SSYaccStackElement* shift(SSLexLexeme* lexeme);
    virtual int lookaheadRead(SSLexLexeme* lexeme);
    virtual int error(std::uint32_t state, SSLexLexeme* lookahead);
    virtual SSYaccStackElement* reduce(std::uint32_t production, std::uint32_t size) = 0;
    virtual int lookaheadError(std::uint32_t state, SSLexLexeme* lookahead,
                               SSLexLexeme* conflictLexeme);
    virtual ~SSYacc();

    // Inside reduce: the element of right-hand symbol index, 0 the leftmost.
    SSYaccStackElement* elementFromProduction(std::int32_t index);
    // The text of that symbol's lexeme, empty for a non-terminal, without
    // making an element for it; valid until the reduction returns.
    std::u16string_view elementText(std::int32_t index);

    void setLex(SSLex* lex) { lex_ = lex; }
    SSLex* lex() const { return lex_; }
    const SSYaccTable* table() const { return table_; }
    std::uint32_t state() const { return state_; }
    std::uint32_t production() const { return production_; }
    std::uint32_t productionSize() const { return productionSize_; }
    std::uint32_t lhs() const { return lhs_; }
    bool eofSeen() const { return eofSeen_; }
    SSLexLexeme* lookahead() { return lookahead_.lexeme(); }
    SSYaccStackElement* result() const { return result_.get(); }
    std::size_t stackDepth() const { return stack_.count(); }
    // Elements given back and not yet handed out again.
    std::size_t keptElements() const { return pool_->keptCount(); }

protected:
    // For stackElement(): a new Element, or one that this parser kept.
    template <typename Element> SSYaccStackElement* newElement() { return pool_->take<Element>(); }
    // Productions below 64 whose reduce() would do nothing but return
    // stackElement(): the parse makes their element without calling it.
    void setPlainProductions(std::uint64_t mask) { plainProductions_ = mask; }
    // For parsers whose elements carry nothing but state and lexeme: lexemes
    // come straight from the lexer as values, shift(), nextLexeme() and
    // lookaheadRead() are not called, and plain productions make no
    // element; elementFromProduction() makes one when asked.
    void setLazyElements(bool lazy) { lazy_ = lazy; }
    // For callers that take a failed recovery as the end of the parse: a
    // recovery with no token to resume at, or that reaches the end of the
    // input, ends parse() with 1 instead of raising, since a raise costs a
    // label more than its parse.
    void setEndOnFailedRecovery(bool end) { endOnFailedRecovery_ = end; }
    // For reduce() of a lazy parser: stands for an element that carries
    // nothing, which is made only when asked for.
    SSYaccStackElement* blankElement() { return &blank_; }

private:
    // The step of state on token, decoded.
    std::uint32_t step(std::uint32_t state, std::uint32_t token) const;
    void findAction(std::uint32_t state, std::uint32_t token);
    // The loop of a lazy parser whose lexer gives views, from the first read:
    // true when the parse ended with result, false when the general loop
    // takes over from the members.
    bool runLazy(int& result);
    void readLazy();
    std::uint32_t gotoTarget(std::uint32_t state, std::uint32_t symbol) const;
    bool readLookahead(bool setAction);
    bool resolveLookahead();
    SSYaccStackEntry& entryFromProduction(std::int32_t index);
    SSYaccStackElement* elementOf(SSYaccStackEntry& entry);
    // The next lexeme from the lexer, or the end of the input.
    void readToken(SSLexToken& out);

    SSLex* lex_;
    const SSLexExpressionList* lookaheadList_ = nullptr;
    const SSYaccTable* table_;
    bool errorSeen_ = false;
    bool abort_ = false;
    std::uint32_t state_ = 0;
    std::uint32_t shiftsSinceError_ = 0;
    SSLexToken lookahead_;
    bool eofSeen_ = false;
    std::uint32_t production_ = 0;
    SSRef<SSLexLexeme> conflictLexeme_;
    std::uint32_t productionSize_ = 0;
    SSYaccLookaheadQueue queue_;
    SSYaccStack stack_;
    SSYaccAction action_ = SSYaccAction::error;
    std::uint32_t queuePosition_ = 0;
    std::uint32_t lhs_ = 0;
    SSRef<SSLexLexeme> eofLexeme_;
    // The element pushed last, if one was made; the stack holds it. Recovery
    // may pop it, so it is held while recovery runs.
    SSYaccStackElement* current_ = nullptr;
    SSRef<SSYaccStackElement> recoveryHeld_;
    SSRef<SSYaccStackElement> result_;
    SSYaccElementPool* pool_;
    // The table's looked-up answers and productions, reached at every step;
    // null where the table has none.
    const std::uint32_t* actionSteps_ = nullptr;
    const std::uint32_t* gotoSlots_ = nullptr;
    const SSYaccProduction* productions_ = nullptr;
    std::uint64_t plainProductions_ = 0;
    bool lazy_ = false;
    bool endOnFailedRecovery_ = false;
    // Never pushed, and its count never reaches 0.
    SSYaccStackElement blank_;
};

// Here, so that the parse loops, which look one up at every step, inline them.
inline std::uint32_t SSYacc::step(std::uint32_t state, std::uint32_t token) const {
    using Data = SSYaccTable::Data;
    const std::uint32_t slot = Data::ActionSlot(token);
    if (actionSteps_ && slot < Data::kActionSlots)
        return actionSteps_[std::size_t{state} * Data::kActionSlots + slot];
    return ActionStep(table_->actionValue(state, token));
}

inline void SSYacc::findAction(std::uint32_t state, std::uint32_t token) {
    const std::uint32_t value = step(state, token);
    const std::uint32_t argument = value & kActionArgumentMask;
    action_ = StepKind(value);
    switch (action_) {
    case SSYaccAction::shift:
        state_ = argument;
        break;
    case SSYaccAction::reduce: {
        const SSYaccProduction& production = productions_[argument];
        production_ = argument;
        productionSize_ = production.size;
        lhs_ = production.lhs;
        break;
    }
    case SSYaccAction::lookahead:
        lookaheadList_ = &table_->lookaheadList(argument);
        break;
    default:
        break;
    }
}

inline std::uint32_t SSYacc::gotoTarget(std::uint32_t state, std::uint32_t symbol) const {
    using Data = SSYaccTable::Data;
    const std::uint32_t slot = symbol - Data::kFirstNonTerminal;
    if (gotoSlots_ && slot < Data::kGotoSlots)
        return gotoSlots_[std::size_t{state} * Data::kGotoSlots + slot] - 1;
    return table_->gotoTarget(state, symbol);
}

} // namespace tervane
