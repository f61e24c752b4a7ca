#include "label/grammars/escaped_label.h"

namespace tervane {

namespace {

// The second character of c's escape, or 0 when c stands for itself.
char16_t EscapeOf(char16_t c, bool menu) {
    switch (c) {
    case u'\\':
        return u'\\';
    case u'\r':
        return u'r';
    case u'\n':
        return u'n';
    case u'\b':
        return u'b';
    case u'\f':
        return u'f';
    case u'\t':
        return menu ? u't' : 0;
    default:
        return 0;
    }
}

} // namespace

// Plain runs go over in one append; every escaped character is at most a
// backslash.
std::u16string EscapeLabel(std::u16string_view text, LabelKind kind) {
    const bool menu = kind == LabelKind::Menu;
    std::u16string out;
    out.reserve(text.size() + 8);
    const std::size_t n = text.size();
    std::size_t run = 0;
    for (std::size_t i = 0; i < n; ++i) {
        const char16_t c = text[i];
        if (c > u'\\')
            continue;
        const char16_t escape = EscapeOf(c, menu);
        if (!escape)
            continue;
        out.append(text.data() + run, i - run);
        out += u'\\';
        out += escape;
        run = i + 1;
    }
    out.append(text.data() + run, n - run);
    return out;
}

} // namespace tervane
