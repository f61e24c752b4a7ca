#include "label/grammars/label_grammars.h"

#include <utility>

namespace tervane {

namespace {

const char* TokenName(std::uint32_t token, const char* t51, const char* t52, const char* t53,
                      const char* t54) {
    switch (token) {
    case 0xFFFFFFFF:
        return "eof";
    case 0xFFFFFFFE:
        return "%error";
    case 51:
        return t51;
    case 52:
        return t52;
    case 53:
        return t53;
    case 54:
        if (t54)
            return t54;
        break;
    }
    return "SSLexTokenNotFound";
}

} // namespace

const char* StringResLexClass::tokenName(std::uint32_t token) {
    return TokenName(token, "STRING", "FORMATTER", "SPECIALCHAR", nullptr);
}

const char* MenuResLexClass::tokenName(std::uint32_t token) {
    return TokenName(token, "LABELTEXT", "PLACEHOLDER", "TAB", "SHORTCUTTEXT");
}

const char* DialogResLexClass::tokenName(std::uint32_t token) {
    return TokenName(token, "LABELTEXT", "AMPERSAND", "SPECIALCHAR", nullptr);
}

std::u16string LabelYaccClass::symbolText(std::int32_t index) {
    return std::u16string(elementText(index));
}

void LabelYaccClass::add(std::uint32_t type, std::int32_t index) {
    const std::u16string_view text = elementText(index);
    // Built in place: no temporary record and no string moved.
    LabelToken* token = nextToken();
    if (!token)
        return;
    token->type = type;
    token->text.assign(text);
}

void LabelYaccClass::add(std::uint32_t type, std::u16string text) {
    if (LabelToken* token = nextToken()) {
        token->type = type;
        // A kept record keeps its room; a new one takes the text's.
        if (reused_)
            token->text.assign(text);
        else
            token->text = std::move(text);
    }
}

SSYaccStackElement* StringResYaccClass::stackElement() {
    return newElement<StringResParseStackElement>();
}

SSYaccStackElement* StringResYaccClass::reduce(std::uint32_t production, std::uint32_t) {
    switch (production) {
    case 5: // piece : STRING
        add(label_token::kText, 0);
        break;
    case 6: // piece : SPECIALCHAR
        add(label_token::kConversion, 0);
        break;
    case 7: // piece : FORMATTER
        add(label_token::kSpecial, 0);
        break;
    }
    return blankElement();
}

SSYaccStackElement* MenuResYaccClass::stackElement() {
    return newElement<MenuResParseStackElement>();
}

SSYaccStackElement* MenuResYaccClass::reduce(std::uint32_t production, std::uint32_t) {
    switch (production) {
    case 3: // item : item TAB
        add(label_token::kTab, 1);
        break;
    case 4: // item : item TAB SHORTCUTTEXT
        add(label_token::kTab, 1);
        shortcutText = symbolText(2);
        splitShortcut();
        break;
    case 5: // item : TAB SHORTCUTTEXT
        add(label_token::kTab, 0);
        shortcutText = symbolText(1);
        splitShortcut();
        break;
    case 6: // item : TAB
        add(label_token::kTab, 0);
        break;
    case 7: // text : LABELTEXT
        add(label_token::kText, 0);
        break;
    case 8: // text : PLACEHOLDER
        add(label_token::kMark, 0);
        break;
    case 9: // text : text LABELTEXT
        add(label_token::kText, 1);
        break;
    case 10: // text : text PLACEHOLDER
        add(label_token::kMark, 1);
        break;
    }
    return blankElement();
}

// The first and the last character never separate, and the character behind
// a separator is a key name even when it is "+" or ",": "Ctrl++" ends in the
// key "+".
void MenuResYaccClass::splitShortcut() {
    const std::u16string& text = shortcutText;
    const std::size_t n = text.size();
    if (n == 0)
        return;
    std::u16string cur(1, text[0]);
    auto flush = [&] {
        if (!cur.empty())
            add(label_token::kText, std::exchange(cur, {}));
    };
    for (std::size_t i = 1; i < n; ++i) {
        const char16_t c = text[i];
        if (i == n - 1 || (c != u',' && c != u'+')) {
            cur += c;
            continue;
        }
        flush();
        add(label_token::kMark, std::u16string(1, c));
        cur += text[++i];
    }
    flush();
}

SSYaccStackElement* DialogResYaccClass::stackElement() {
    return newElement<DialogResParseStackElement>();
}

SSYaccStackElement* DialogResYaccClass::reduce(std::uint32_t production, std::uint32_t) {
    switch (production) {
    case 2: // label : label LABELTEXT
        add(label_token::kText, 1);
        break;
    case 3: // label : label AMPERSAND
        add(label_token::kMark, 1);
        break;
    case 4: // label : label SPECIALCHAR
        add(label_token::kSpecial, 1);
        break;
    case 5: // label : LABELTEXT
        add(label_token::kText, 0);
        break;
    case 6: // label : AMPERSAND
        add(label_token::kMark, 0);
        break;
    case 7: // label : SPECIALCHAR
        add(label_token::kSpecial, 0);
        break;
    }
    return blankElement();
}

} // namespace tervane
