#pragma once
// The façade over the three label grammars: Initialise, then Parse, for every
// label.
#include <cstdint>
#include <memory>
#include <string_view>

#include "label/grammars/label_grammars.h"
#include "label/grammars/label_token.h"
#include "label/runtime/ss_lex_consumer.h"
#include "label/runtime/ss_lex_table.h"
#include "label/runtime/ss_yacc_table.h"
#include "platform/win32/types.h"

namespace tervane {

class CLabelParser {
public:
    CLabelParser() = default;
    CLabelParser(const CLabelParser&) = delete;
    CLabelParser& operator=(const CLabelParser&) = delete;
    ~CLabelParser();

    // Builds the tables, lexer and parser of one kind (1 String, 2 Menu,
    // 3 Dialog). 0 on success, 0x80004005 for an unknown kind or a failed
    // allocation; a missing table raises its SSException.
    LONG Initialise(std::uint16_t kind);
    LONG Initialise(LabelKind kind) { return Initialise(static_cast<std::uint16_t>(kind)); }

    // Appends the tokens of text (in the escaped input form) to tokens and
    // tears down what Initialise built. A label that fails to parse only
    // gives fewer tokens.
    void Parse(std::u16string_view text, LabelTokenList& tokens);

    std::uint16_t kind() const { return kind_; }

private:
    void Reset();

    std::unique_ptr<SSLexTable> lexTable_;
    std::unique_ptr<SSYaccTable> yaccTable_;
    std::unique_ptr<LabelYaccClass> yacc_;
    std::unique_ptr<SSLex> lex_;
    std::unique_ptr<SSLexConsumer> emptyConsumer_;
    std::uint16_t kind_ = 0;
};

// The tokens of one label of a kind: Initialise and Parse on a new parser.
LabelTokenList ParseLabel(LabelKind kind, std::u16string_view text);

} // namespace tervane
