#pragma once
// The scan loop: longest match over the current expression list, with one
// level of memory (the last accepting state passed decides).
#include <cstdint>

#include "label/runtime/ss_exception.h"
#include "label/runtime/ss_lex_consumer.h"
#include "label/runtime/ss_lex_lexeme.h"
#include "label/runtime/ss_lex_table.h"
#include "label/runtime/ss_lex_token.h"
#include "label/runtime/ss_lifo.h"

namespace tervane {

class SSLex : public SSExceptionPresent {
public:
    // Neither is owned; the caller keeps both alive while the lexer runs.
    SSLex(SSLexConsumer* consumer, const SSLexTable* table);
    SSLex(const SSLex&) = delete;
    SSLex& operator=(const SSLex&) = delete;

    // The next lexeme with count 0, or null at the end of the input.
    SSLexLexeme* nextLexeme();
    // The same as a value; false at the end of the input.
    bool nextToken(SSLexToken& out);
    // The same into out, which holds no object, for lexers that leave texts
    // in a consumer that holds all of its input as wide text: 1 for a
    // lexeme, 0 at the end of the input, -1 when only nextToken can go on.
    int nextView(SSLexTokenData& out);
    void setConsumer(SSLexConsumer* consumer) { consumer_ = consumer; }
    // Back to the state of a new lexer on the same consumer and table.
    void reset();

    virtual SSLexLexeme* invalidToken(SSLexConsumer& consumer);
    virtual const char* tokenName(std::uint32_t token);
    virtual SSLexLexeme* ignoreLexeme(SSLexConsumer& consumer, std::uint32_t token,
                                      const SSLexMark& mark);
    virtual SSLexLexeme* completeLexeme(SSLexConsumer& consumer, std::uint32_t token,
                                        const SSLexMark& mark);
    virtual void keywordLookup(SSLexLexeme& lexeme, std::uint32_t keywordIndex,
                               std::uint32_t consumerType);
    virtual ~SSLex() = default;

    SSLexConsumer* consumer() const { return consumer_; }
    const SSLexTable* table() const { return table_; }
    std::uint32_t state() const { return state_; }
    std::uint32_t lexemeCount() const { return lexemeCount_; }
    std::size_t listDepth() const { return listStack_.count(); }
    const SSLexExpressionList* currentList() const { return currentList_; }
    const SSLexMark& contextMark() const { return contextMark_; }

protected:
    // For lexers whose completeLexeme is the default: nextToken leaves the
    // text of a lexeme in the consumer instead of copying it into an object,
    // and nextView can be used.
    void setViews(bool views) { views_ = views; }

private:
    void changeLists(const SSLexFinalState& accepted);
    // What a scan found, made a lexeme of, skipped or refused: true with out
    // set, false when the scan must go on.
    bool settle(const SSLexFinalState& accepted, SSLexMark acceptedMark, bool marked,
                bool startRead, SSLexTokenData& out);

    const SSLexTable* table_;
    std::uint32_t state_ = 0;
    SSLexConsumer* consumer_;
    std::uint32_t lexemeCount_ = 0;
    const SSLexExpressionList* currentList_ = nullptr;
    SSLifo<const SSLexExpressionList*, 32> listStack_{32, 32};
    SSLexMark contextMark_;
    bool views_ = false;
};

} // namespace tervane
