#include "label/grammars/label_parser.h"

#include <cstdint>
#include <cstring>
#include <new>

#include "platform/win32/resources.h"

namespace tervane {

namespace {

constexpr LONG kFailure = static_cast<LONG>(0x80004005);

// The module's own tables, loaded through the resource calls on first use.
// A loaded table is read-only and its copies share it, so every label still
// gets tables of its own for the price of a reference count.
template <LabelKind kind> struct OwnTables {
    static const char* Name() {
        if constexpr (kind == LabelKind::String)
            return "STRINGRESPARSE";
        else if constexpr (kind == LabelKind::Menu)
            return "MENURESPARSE";
        else
            return "DIALOGRESPARSE";
    }
    static const SSLexTable& Lex() {
        static const SSLexTable table(TervaneModuleHandle(), Name(), "SSLEXTABLE");
        return table;
    }
    static const SSYaccTable& Yacc() {
        static const SSYaccTable table(TervaneModuleHandle(), Name(), "SSYACCTABLE");
        return table;
    }
};

// Where the text's first null is, or its size: four characters at a time,
// since almost no label has one.
std::size_t LengthToNull(std::u16string_view text) {
    constexpr std::uint64_t kOnes = 0x0001000100010001ULL;
    constexpr std::uint64_t kHighs = 0x8000800080008000ULL;
    const std::size_t n = text.size();
    std::size_t i = 0;
    for (; n - i >= 4; i += 4) {
        std::uint64_t word;
        std::memcpy(&word, text.data() + i, sizeof word);
        if ((word - kOnes) & ~word & kHighs)
            break;
    }
    for (; i < n; ++i)
        if (text[i] == 0)
            return i;
    return n;
}

} // namespace

// The parser refers to the lexer and both to the tables: tear down in reverse.
void CLabelParser::Reset() {
    ready_ = false;
    builtKind_ = 0;
    lex_ = nullptr;
    yacc_ = nullptr;
    engines_.emplace<std::monostate>();
    yaccTable_.reset();
    lexTable_.reset();
    consumer_.reset();
}

template <typename Lex, typename Yacc> void CLabelParser::Build() {
    auto& engines = engines_.emplace<Engines<Lex, Yacc>>(&*consumer_, &*lexTable_, &*yaccTable_);
    lex_ = &engines.lex;
    yacc_ = &engines.yacc;
}

LONG CLabelParser::Initialise(std::uint16_t kind) {
    kind_ = kind;
    ready_ = false;
    if (builtKind_ == kind && yacc_) {
        ready_ = true;
        return 0;
    }
    Reset();
    try {
        switch (static_cast<LabelKind>(kind)) {
        case LabelKind::String:
            consumer_.emplace(std::u16string_view());
            lexTable_.emplace(OwnTables<LabelKind::String>::Lex());
            yaccTable_.emplace(OwnTables<LabelKind::String>::Yacc());
            Build<StringResLexClass, StringResYaccClass>();
            break;
        case LabelKind::Menu:
            consumer_.emplace(std::u16string_view());
            lexTable_.emplace(OwnTables<LabelKind::Menu>::Lex());
            yaccTable_.emplace(OwnTables<LabelKind::Menu>::Yacc());
            Build<MenuResLexClass, MenuResYaccClass>();
            break;
        case LabelKind::Dialog:
            consumer_.emplace(std::u16string_view());
            lexTable_.emplace(OwnTables<LabelKind::Dialog>::Lex());
            yaccTable_.emplace(OwnTables<LabelKind::Dialog>::Yacc());
            Build<DialogResLexClass, DialogResYaccClass>();
            break;
        default:
            return kFailure;
        }
        builtKind_ = kind;
        ready_ = true;
        return 0;
    } catch (const std::bad_alloc&) {
        Reset();
    } catch (const SSExceptionOutOfStorage&) {
        Reset();
    }
    return kFailure;
}

template <typename Tokens> void CLabelParser::Run(std::u16string_view text, Tokens& tokens) {
    if (!ready_)
        return;
    ready_ = false;
    // The text ends at its first null, as a null-terminated one would.
    text = text.substr(0, LengthToNull(text));
    // However the parse ends, the engines are new again for the next label,
    // or built anew when that fails.
    struct Restore {
        CLabelParser& parser;
        ~Restore() {
            try {
                parser.yacc_->setTokens(static_cast<LabelTokenList*>(nullptr));
                parser.yacc_->reset();
                parser.lex_->reset();
            } catch (...) {
                parser.builtKind_ = 0;
            }
        }
    } restore{*this};
    yacc_->setTokens(&tokens);
    try {
        consumer_->assign(text);
        yacc_->parse();
    } catch (const SSException&) {
        // A label that can't be parsed comes back short and stops nothing.
    }
}

void CLabelParser::Parse(std::u16string_view text, LabelTokenList& tokens) {
    Run(text, tokens);
}

void CLabelParser::Parse(std::u16string_view text, LabelTokens& tokens) {
    Run(text, tokens);
}

LabelTokenList ParseLabel(LabelKind kind, std::u16string_view text) {
    LabelTokenList tokens;
    CLabelParser parser;
    if (parser.Initialise(kind) == 0)
        parser.Parse(text, tokens);
    return tokens;
}

CLabelParser& SharedLabelParser() {
    thread_local CLabelParser parser;
    return parser;
}

} // namespace tervane
