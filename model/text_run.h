#pragma once
// Buffers kept from label to label for the texts on their way to pieces: the
// escaped form the grammars read, and the runs of text joined from tokens
// with their escapes undone. Once grown, neither allocates again.
#include <algorithm>
#include <cstddef>
#include <memory>
#include <string_view>

#include "label/grammars/label_token.h"
#include "model/unit_runs.h"

namespace tervane {

// A growing buffer of units that is never cleared: its units are written
// before they are read, so growing it need not fill it.
class UnitBuffer {
public:
    // Room for size units; what it held before may be lost.
    char16_t* Reserve(std::size_t size) {
        return size <= capacity_ ? units_.get() : Replace(size, 0);
    }
    // Room for more units behind the first kept, which stay.
    char16_t* Grow(std::size_t kept, std::size_t more) {
        if (more > capacity_ - kept)
            Replace(std::max(2 * capacity_, kept + more), kept);
        return units_.get() + kept;
    }
    const char16_t* data() const { return units_.get(); }

private:
    // A buffer of size units that starts with the first kept of this one.
    char16_t* Replace(std::size_t size, std::size_t kept);

    std::unique_ptr<char16_t[]> units_;
    std::size_t capacity_ = 0;
};

// A run of text being joined.
class TextRun {
public:
    // Appends text with the escapes of the kind's text tokens undone: a run
    // of backslashes, of '%' but in menus, or of '&' but in string tables,
    // shrinks to half its length, rounded up. The runs never merge, so one
    // pass undoes all three.
    void AppendUnescaped(std::u16string_view text, LabelKind kind) {
        const char16_t* const from = text.data();
        const std::size_t n = text.size();
        char16_t* to = buffer_.Grow(size_, n);
        const char16_t* const start = to;
        for (std::size_t i = 0;;) {
            const std::size_t plain = PlainRun(from + i, n - i, kind);
            to = std::copy_n(from + i, plain, to);
            i += plain;
            if (i == n)
                break;
            const char16_t c = from[i];
            *to++ = c;
            i += i + 1 < n && from[i + 1] == c ? 2 : 1;
        }
        size_ += static_cast<std::size_t>(to - start);
    }
    bool empty() const { return size_ == 0; }
    std::u16string_view view() const { return {buffer_.data(), size_}; }
    void clear() { size_ = 0; }

private:
    // Up to the first unit the kind unescapes.
    static std::size_t PlainRun(const char16_t* text, std::size_t count, LabelKind kind) {
        // Strings are the most and the longest texts.
        if (kind == LabelKind::String)
            return PlainUnescapeRun(text, count);
        // A character that is not unescaped stands in for the backslash again.
        return RunWithout(text, count, u'\\', kind == LabelKind::Menu ? u'\\' : u'%', u'&');
    }

    UnitBuffer buffer_;
    std::size_t size_ = 0;
};

// The escaped form of a dialog or menu label in buffer: backslashes doubled,
// CR, LF, backspace and form feed as \r \n \b \f, and a tab as \t in a menu,
// where it leads the shortcut; with a blank at its end if asked.
std::u16string_view EscapeLabelInto(UnitBuffer& buffer, std::u16string_view text, LabelKind kind,
                                    bool blankAtEnd);

} // namespace tervane
