#pragma once
// The façade over the three label grammars: Initialise, then Parse, for every
// label.
#include <cstdint>
#include <optional>
#include <string_view>
#include <variant>

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
    ~CLabelParser() { Reset(); }

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
    // A grammar's lexer and parser, built in place: no allocation per label.
    template <typename Lex, typename Yacc> struct Engines {
        Engines(SSLexConsumer* consumer, const SSLexTable* lexTable, const SSYaccTable* yaccTable)
            : lex(consumer, lexTable), yacc(&lex, yaccTable) {}
        Lex lex;
        Yacc yacc;
    };
    template <typename Lex, typename Yacc> void Build();
    void Reset();

    std::optional<SSLexStringConsumer> emptyConsumer_;
    std::optional<SSLexTable> lexTable_;
    std::optional<SSYaccTable> yaccTable_;
    std::variant<std::monostate, Engines<StringResLexClass, StringResYaccClass>,
                 Engines<MenuResLexClass, MenuResYaccClass>,
                 Engines<DialogResLexClass, DialogResYaccClass>>
        engines_;
    SSLex* lex_ = nullptr;
    LabelYaccClass* yacc_ = nullptr;
    std::uint16_t kind_ = 0;
};

// The tokens of one label of a kind: Initialise and Parse on a new parser.
LabelTokenList ParseLabel(LabelKind kind, std::u16string_view text);

} // namespace tervane
