#include "label/grammars/escaped_label.h"

namespace tervane {

std::u16string EscapeLabel(std::u16string_view text, LabelKind kind) {
    std::u16string out;
    out.reserve(text.size() + 8);
    for (char16_t c : text) {
        char16_t escape = 0;
        switch (c) {
        case u'\\':
            escape = u'\\';
            break;
        case u'\r':
            escape = u'r';
            break;
        case u'\n':
            escape = u'n';
            break;
        case u'\b':
            escape = u'b';
            break;
        case u'\f':
            escape = u'f';
            break;
        case u'\t':
            if (kind == LabelKind::Menu)
                escape = u't';
            break;
        }
        if (escape) {
            out += u'\\';
            out += escape;
        } else {
            out += c;
        }
    }
    return out;
}

} // namespace tervane
