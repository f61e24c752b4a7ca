#include "label/grammars/label_parser.h"

#include <new>

#include "platform/win32/resources.h"

namespace tervane {

namespace {

constexpr LONG kFailure = static_cast<LONG>(0x80004005);

const char* TableName(std::uint16_t kind) {
    switch (static_cast<LabelKind>(kind)) {
    case LabelKind::String:
        return "STRINGRESPARSE";
    case LabelKind::Menu:
        return "MENURESPARSE";
    case LabelKind::Dialog:
        return "DIALOGRESPARSE";
    }
    return nullptr;
}

template <typename Lex, typename Yacc>
void Build(SSLexConsumer* consumer, const SSLexTable* lexTable, const SSYaccTable* yaccTable,
           std::unique_ptr<SSLex>& lex, std::unique_ptr<LabelYaccClass>& yacc) {
    lex = std::make_unique<Lex>(consumer, lexTable);
    yacc = std::make_unique<Yacc>(lex.get(), yaccTable);
}

} // namespace

CLabelParser::~CLabelParser() {
    Reset();
}

// The parser refers to the lexer and both to the tables: tear down in reverse.
void CLabelParser::Reset() {
    yacc_.reset();
    lex_.reset();
    yaccTable_.reset();
    lexTable_.reset();
    emptyConsumer_.reset();
}

LONG CLabelParser::Initialise(std::uint16_t kind) {
    kind_ = kind;
    Reset();
    const char* name = TableName(kind);
    if (!name)
        return kFailure;
    try {
        emptyConsumer_ = std::make_unique<SSLexStringConsumer>(std::u16string_view());
        // The module's own tables are prepared once and shared, so loading
        // them for every label costs a lookup, not a copy.
        lexTable_ = std::make_unique<SSLexTable>(TervaneModuleHandle(), name, "SSLEXTABLE");
        yaccTable_ = std::make_unique<SSYaccTable>(TervaneModuleHandle(), name, "SSYACCTABLE");
        switch (static_cast<LabelKind>(kind)) {
        case LabelKind::String:
            Build<StringResLexClass, StringResYaccClass>(emptyConsumer_.get(), lexTable_.get(),
                                                         yaccTable_.get(), lex_, yacc_);
            break;
        case LabelKind::Menu:
            Build<MenuResLexClass, MenuResYaccClass>(emptyConsumer_.get(), lexTable_.get(),
                                                     yaccTable_.get(), lex_, yacc_);
            break;
        case LabelKind::Dialog:
            Build<DialogResLexClass, DialogResYaccClass>(emptyConsumer_.get(), lexTable_.get(),
                                                         yaccTable_.get(), lex_, yacc_);
            break;
        }
    } catch (const std::bad_alloc&) {
        Reset();
        return kFailure;
    } catch (const SSExceptionOutOfStorage&) {
        Reset();
        return kFailure;
    }
    return 0;
}

void CLabelParser::Parse(std::u16string_view text, LabelTokenList& tokens) {
    if (!yacc_)
        return;
    // The text ends at its first null, as a null-terminated one would.
    text = text.substr(0, text.find(u'\0'));
    yacc_->setTokens(&tokens);
    try {
        SSLexStringConsumer consumer(text);
        lex_->setConsumer(&consumer);
        yacc_->parse();
    } catch (const SSException&) {
        // A label that can't be parsed comes back short and stops nothing.
    }
    Reset();
}

LabelTokenList ParseLabel(LabelKind kind, std::u16string_view text) {
    LabelTokenList tokens;
    CLabelParser parser;
    if (parser.Initialise(kind) == 0)
        parser.Parse(text, tokens);
    return tokens;
}

} // namespace tervane
