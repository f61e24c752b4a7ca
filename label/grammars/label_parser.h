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

    // Appends the tokens of text (in the escaped input form) to tokens; the
    // next label needs Initialise again. A label that fails to parse only
    // gives fewer tokens.
    void Parse(std::u16string_view text, LabelTokenList& tokens);
    // The same into a list that keeps its records from label to label.
    void Parse(std::u16string_view text, LabelTokens& tokens);

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
    template <typename Tokens> void Run(std::u16string_view text, Tokens& tokens);
    void Reset();

    // The engines of the kind built last stay for the next label of that
    // kind; a parse puts them back to their new state when it ends.
    std::optional<SSLexStringConsumer> consumer_;
    std::optional<SSLexTable> lexTable_;
    std::optional<SSYaccTable> yaccTable_;
    std::variant<std::monostate, Engines<StringResLexClass, StringResYaccClass>,
                 Engines<MenuResLexClass, MenuResYaccClass>,
                 Engines<DialogResLexClass, DialogResYaccClass>>
        engines_;
    SSLex* lex_ = nullptr;
    LabelYaccClass* yacc_ = nullptr;
    std::uint16_t kind_ = 0;
    std::uint16_t builtKind_ = 0;
    bool ready_ = false; // Initialise succeeded and no Parse followed
};

// The tokens of one label of a kind: Initialise and Parse on a new parser.
LabelTokenList ParseLabel(LabelKind kind, std::u16string_view text);

// A parser keeps nothing from one label to the next: the thread's one serves
// every resource that brings none of its own.
CLabelParser& SharedLabelParser();

} // namespace tervane
