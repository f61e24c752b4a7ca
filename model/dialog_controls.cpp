#include "model/dialog_controls.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <stdexcept>
#include <string_view>
#include <utility>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace tervane {

namespace {

constexpr DWORD kVisible = 0x10000000;
constexpr WORD kNoId = 0xFFFF;

struct StyleMark {
    WORD classOrdinal;
    DWORD bit;
    const char* name;
};

constexpr StyleMark kStyleMarks[] = {
    {kEditClass, 0x0008, "ES_UPPERCASE"},      {kEditClass, 0x0010, "ES_LOWERCASE"},
    {kEditClass, 0x0020, "ES_PASSWORD"},       {kEditClass, 0x2000, "ES_NUMBER"},
    {kStaticClass, 0x0080, "SS_NOPREFIX"},     {kComboBoxClass, 0x2000, "CBS_UPPERCASE"},
    {kComboBoxClass, 0x4000, "CBS_LOWERCASE"},
};

// A tag's text written narrow into a buffer on the stack and widened in one
// pass: a control's tag is of a bounded length, whatever the template holds,
// and all of it is ASCII, which widens unit for unit.
class TagWriter {
public:
    // Literals are copied by their known size.
    template <std::size_t N> void Add(const char (&text)[N]) { Put(text, N - 1); }
    void Add(std::string_view text) { Put(text.data(), text.size()); }
    void Add(char c) { Put(&c, 1); }
    // The numbers of a template: at most five digits and a sign.
    void AddNumber(long value) {
        if (value < -99999 || value > 99999) {
            char digits[24];
            char* end = std::to_chars(digits, digits + sizeof digits, value).ptr;
            Put(digits, static_cast<std::size_t>(end - digits));
            return;
        }
        if (kRoom - size_ < 6)
            return;
        if (value < 0)
            chars_[size_++] = '-';
        unsigned magnitude = static_cast<unsigned>(value < 0 ? -value : value);
        const std::size_t count = magnitude < 10      ? 1
                                  : magnitude < 100   ? 2
                                  : magnitude < 1000  ? 3
                                  : magnitude < 10000 ? 4
                                                      : 5;
        for (std::size_t at = size_ + count; at-- > size_; magnitude /= 10)
            chars_[at] = static_cast<char>('0' + magnitude % 10);
        size_ += count;
    }
    std::string_view Narrow() const { return {chars_, size_}; }
    WideText Wide() const {
        char16_t units[kRoom + kSlack];
        std::size_t at = 0;
#if defined(__SSE2__)
        // Sixteen at a time, into the slack behind the end.
        const __m128i zero = _mm_setzero_si128();
        for (; at < size_; at += 16) {
            const __m128i narrow = _mm_loadu_si128(reinterpret_cast<const __m128i*>(chars_ + at));
            _mm_storeu_si128(reinterpret_cast<__m128i*>(units + at),
                             _mm_unpacklo_epi8(narrow, zero));
            _mm_storeu_si128(reinterpret_cast<__m128i*>(units + at + 8),
                             _mm_unpackhi_epi8(narrow, zero));
        }
#endif
        for (; at < size_; ++at)
            units[at] = static_cast<unsigned char>(chars_[at]);
        return WideText(std::u16string_view(units, size_));
    }

private:
    // The room holds the longest tag; a text that would not fit is left out whole.
    void Put(const char* text, std::size_t n) {
        if (n > kRoom - size_)
            return;
        std::memcpy(chars_ + size_, text, n);
        size_ += n;
    }

    // Kind, every style mark, four places, an id and the hidden mark, with room to spare.
    static constexpr std::size_t kRoom = 256;
    // Whole blocks of sixteen are widened, the last one reaching behind the end.
    static constexpr std::size_t kSlack = 16;
    char chars_[kRoom + kSlack];
    std::size_t size_ = 0;
};

void WriteStyleMarks(TagWriter& out, WORD classOrdinal, DWORD style) {
    // Most controls are of a class without marks.
    if (classOrdinal != kEditClass && classOrdinal != kStaticClass &&
        classOrdinal != kComboBoxClass)
        return;
    bool first = true;
    for (const StyleMark& mark : kStyleMarks) {
        if (mark.classOrdinal != classOrdinal || !(style & mark.bit))
            continue;
        out.Add(first ? " style=\"" : " ");
        out.Add(mark.name);
        first = false;
    }
    if (!first)
        out.Add('"');
}

void WriteControlTagBody(TagWriter& out, const DialogControl& control, bool withHidden) {
    out.Add(GetControlKind(control.classOrdinal, control.style));
    WriteStyleMarks(out, control.classOrdinal, control.style);
    out.Add(" x=\"");
    out.AddNumber(control.x);
    out.Add("\" y=\"");
    out.AddNumber(control.y);
    out.Add("\" width=\"");
    out.AddNumber(control.width);
    out.Add("\" height=\"");
    out.AddNumber(control.height);
    out.Add('"');
    if (control.id != kNoId) {
        out.Add(" id=\"");
        out.AddNumber(control.id);
        out.Add('"');
    }
    if (withHidden && !(control.style & kVisible))
        out.Add(" hidden=\"yes\"");
}

struct NamedKind {
    std::string_view kind;
    ControlKindTags tags;
};

template <std::size_t N, std::size_t M, std::size_t K>
consteval NamedKind Kind(std::string_view kind, const char16_t (&name)[N],
                         const char16_t (&closeTag)[M], const char16_t (&openTag)[K]) {
    return {kind,
            {WideText::Constant(name), ConstantTag(closeTag),
             PackTagWords(FindTagWordsPlain(std::u16string_view(openTag, K - 1)))}};
}

constexpr NamedKind kKindTags[] = {
    Kind("button", u"button", u"</button>", u"<button"),
    Kind("checkbox", u"checkbox", u"</checkbox>", u"<checkbox"),
    Kind("radiobutton", u"radiobutton", u"</radiobutton>", u"<radiobutton"),
    Kind("groupbox", u"groupbox", u"</groupbox>", u"<groupbox"),
    Kind("edit", u"edit", u"</edit>", u"<edit"),
    Kind("label", u"label", u"</label>", u"<label"),
    Kind("listbox", u"listbox", u"</listbox>", u"<listbox"),
    Kind("combobox", u"combobox", u"</combobox>", u"<combobox"),
    Kind("unknown", u"unknown", u"</unknown>", u"<unknown"),
};

} // namespace

const ControlKindTags& GetControlKindTags(std::string_view kind) {
    for (const NamedKind& named : kKindTags)
        if (named.kind == kind)
            return named.tags;
    // Every kind is in the table; anything else is a fault of the caller.
    throw std::invalid_argument("no such control kind");
}

const char* GetControlKind(WORD classOrdinal, DWORD style) {
    const DWORD low = style & 0xFF;
    switch (classOrdinal) {
    case kButtonClass:
        if ((low & 7) == 7)
            return "groupbox";
        if (low & 0x02)
            return "checkbox";
        if (!(low & 0x08))
            return "button";
        return "radiobutton";
    case kEditClass:
        return "edit";
    case kStaticClass:
        return "label";
    case kListBoxClass:
        return "listbox";
    case kComboBoxClass:
        return "combobox";
    default:
        return "unknown";
    }
}

std::string GetStyleMarks(WORD classOrdinal, DWORD style) {
    TagWriter marks;
    WriteStyleMarks(marks, classOrdinal, style);
    return std::string(marks.Narrow());
}

std::string ControlTagBody(const DialogControl& control, bool withHidden) {
    TagWriter body;
    WriteControlTagBody(body, control, withHidden);
    return std::string(body.Narrow());
}

WideText ControlStartTag(const DialogControl& control, bool withHidden) {
    TagWriter tag;
    tag.Add('<');
    WriteControlTagBody(tag, control, withHidden);
    tag.Add('>');
    return tag.Wide();
}

std::string DialogTagBody(const std::string& identifier) {
    return "dialog id=\"" + identifier + "\"";
}

} // namespace tervane
