#include "preview/draw/hotkey_text.h"

#include "platform/locale/utf8.h"

namespace tervane::preview {

HotkeyText ParseHotkeys(std::u16string_view text, bool noPrefix) {
    HotkeyText out;
    if (noPrefix) {
        locale::AppendUtf8(out.text, text);
        return out;
    }
    std::u16string shown;
    std::size_t begin = 0, end = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != u'&') {
            shown += text[i];
            continue;
        }
        if (i + 1 >= text.size())
            break; // a mark at the end shows nothing
        ++i;
        if (text[i] == u'&') {
            shown += u'&';
            continue;
        }
        // A surrogate pair is one character.
        const bool pair = text[i] >= 0xD800 && text[i] < 0xDC00 && i + 1 < text.size();
        begin = shown.size();
        shown += text.substr(i, pair ? 2 : 1);
        end = shown.size();
        i += pair ? 1 : 0;
    }
    const std::u16string_view view(shown);
    locale::AppendUtf8(out.text, view.substr(0, begin));
    out.underlineBegin = out.text.size();
    locale::AppendUtf8(out.text, view.substr(begin, end - begin));
    out.underlineEnd = out.text.size();
    locale::AppendUtf8(out.text, view.substr(end));
    return out;
}

} // namespace tervane::preview
