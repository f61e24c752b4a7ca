#include "model/text_run.h"

#include <algorithm>

namespace tervane {

char16_t* UnitBuffer::Replace(std::size_t size, std::size_t kept) {
    auto units = std::make_unique_for_overwrite<char16_t[]>(size);
    std::copy_n(units_.get(), kept, units.get());
    units_ = std::move(units);
    capacity_ = size;
    return units_.get();
}

std::u16string_view EscapeLabelInto(UnitBuffer& buffer, std::u16string_view text, LabelKind kind,
                                    bool blankAtEnd) {
    const bool menu = kind == LabelKind::Menu;
    // Room for the longest result: every unit escaped, and the blank.
    char16_t* const start = buffer.Reserve(2 * text.size() + 1);
    char16_t* to = start;
    for (const char16_t c : text) {
        char16_t escape;
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
            if (!menu) {
                *to++ = c;
                continue;
            }
            escape = u't';
            break;
        default:
            *to++ = c;
            continue;
        }
        *to++ = u'\\';
        *to++ = escape;
    }
    if (blankAtEnd)
        *to++ = u' ';
    return {start, static_cast<std::size_t>(to - start)};
}

} // namespace tervane
