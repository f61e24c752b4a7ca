#include "model/text_util.h"

namespace tervane {

bool IsWideSpace(char16_t c) {
    switch (c) {
    case u' ':
    case u'\t':
    case u'\n':
    case u'\v':
    case u'\f':
    case u'\r':
    case 0x85:
    case 0x1680:
    case 0x2028:
    case 0x2029:
    case 0x205F:
    case 0x3000:
        return true;
    default:
        // U+2000..U+2006 and U+2008..U+200A; U+00A0, U+2007 and U+202F do not
        // break and count as no space.
        return (c >= 0x2000 && c <= 0x2006) || (c >= 0x2008 && c <= 0x200A);
    }
}

std::u16string_view TrimLeftView(std::u16string_view text) {
    std::size_t at = 0;
    while (at < text.size() && IsWideSpace(text[at]))
        ++at;
    return text.substr(at);
}

std::u16string_view TrimRightView(std::u16string_view text) {
    std::size_t end = text.size();
    while (end > 0 && IsWideSpace(text[end - 1]))
        --end;
    return text.substr(0, end);
}

std::u16string TrimLeft(std::u16string_view text) {
    return std::u16string(TrimLeftView(text));
}

std::u16string TrimRight(std::u16string_view text) {
    return std::u16string(TrimRightView(text));
}

void ReplaceAll(std::u16string& text, std::u16string_view from, std::u16string_view to) {
    for (std::size_t at = text.find(from); at != std::u16string::npos;
         at = text.find(from, at + to.size()))
        text.replace(at, from.size(), to);
}

void UnescapeControls(std::u16string& text) {
    ReplaceAll(text, u"\\r", u"\r");
    ReplaceAll(text, u"\\n", u"\n");
    ReplaceAll(text, u"\\b", u"\b");
    ReplaceAll(text, u"\\f", u"\f");
}

void EscapeControls(std::u16string& text) {
    ReplaceAll(text, u"\r", u"\\r");
    ReplaceAll(text, u"\n", u"\\n");
    ReplaceAll(text, u"\b", u"\\b");
    ReplaceAll(text, u"\f", u"\\f");
}

} // namespace tervane
