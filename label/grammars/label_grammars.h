#pragma once
// The String, Menu and Dialog grammars: lexers that name their tokens and
// parsers whose reductions append label tokens to the caller's list.
#include <cstdint>
#include <string>

#include "label/grammars/label_token.h"
#include "label/runtime/ss_lex.h"
#include "label/runtime/ss_yacc.h"

namespace tervane {

class StringResLexClass : public SSLex {
public:
    StringResLexClass(SSLexConsumer* consumer, const SSLexTable* table) : SSLex(consumer, table) {
        setViews(true);
    }
    const char* tokenName(std::uint32_t token) override;
};

class MenuResLexClass : public SSLex {
public:
    MenuResLexClass(SSLexConsumer* consumer, const SSLexTable* table) : SSLex(consumer, table) {
        setViews(true);
    }
    const char* tokenName(std::uint32_t token) override;
};

class DialogResLexClass : public SSLex {
public:
    DialogResLexClass(SSLexConsumer* consumer, const SSLexTable* table) : SSLex(consumer, table) {
        setViews(true);
    }
    const char* tokenName(std::uint32_t token) override;
};

class StringResParseStackElement : public SSYaccStackElement {};
class MenuResParseStackElement : public SSYaccStackElement {};
class DialogResParseStackElement : public SSYaccStackElement {};

// Base of the three parsers: holds the caller's list.
class LabelYaccClass : public SSYacc {
public:
    // A label that can't be parsed comes back short: a recovery that fails
    // at its end ends the parse without a raise.
    LabelYaccClass(SSLex* lex, const SSYaccTable* table) : SSYacc(lex, table) {
        setLazyElements(true);
        setEndOnFailedRecovery(true);
    }
    // Where reductions put their tokens: at the end of a list, or written
    // over the kept records of a reused one.
    void setTokens(LabelTokenList* tokens) {
        tokens_ = tokens;
        reused_ = nullptr;
    }
    void setTokens(LabelTokens* tokens) {
        tokens_ = nullptr;
        reused_ = tokens;
    }

protected:
    // A token of type with the text of right-hand symbol index.
    void add(std::uint32_t type, std::int32_t index);
    void add(std::uint32_t type, std::u16string text);
    std::u16string symbolText(std::int32_t index);

private:
    LabelToken* nextToken() {
        if (reused_)
            return &reused_->append();
        return tokens_ ? &tokens_->emplace_back() : nullptr;
    }

    LabelTokenList* tokens_ = nullptr;
    LabelTokens* reused_ = nullptr;
};

class StringResYaccClass : public LabelYaccClass {
public:
    // Only productions 5 to 7 add tokens.
    StringResYaccClass(SSLex* lex, const SSYaccTable* table) : LabelYaccClass(lex, table) {
        setPlainProductions(~std::uint64_t{0xE0});
    }
    SSYaccStackElement* stackElement() override;
    SSYaccStackElement* reduce(std::uint32_t production, std::uint32_t size) override;
};

class MenuResYaccClass : public LabelYaccClass {
public:
    // Only productions 3 to 10 add tokens.
    MenuResYaccClass(SSLex* lex, const SSYaccTable* table) : LabelYaccClass(lex, table) {
        setPlainProductions(~std::uint64_t{0x7F8});
    }
    SSYaccStackElement* stackElement() override;
    SSYaccStackElement* reduce(std::uint32_t production, std::uint32_t size) override;

    // The text being split into key names and separators.
    std::u16string shortcutText;

private:
    void splitShortcut();
};

class DialogResYaccClass : public LabelYaccClass {
public:
    // Only productions 2 to 7 add tokens.
    DialogResYaccClass(SSLex* lex, const SSYaccTable* table) : LabelYaccClass(lex, table) {
        setPlainProductions(~std::uint64_t{0xFC});
    }
    SSYaccStackElement* stackElement() override;
    SSYaccStackElement* reduce(std::uint32_t production, std::uint32_t size) override;
};

} // namespace tervane
