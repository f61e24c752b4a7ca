#include "model/dialog_controls.h"

#include <algorithm>
#include <charconv>
#include <stdexcept>
#include <string_view>
#include <utility>

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

// A tag's text written wide into a buffer on the stack: a control's tag is
// of a bounded length, whatever the template holds, and all of it is ASCII,
// which widens unit for unit.
class TagWriter {
public:
    void Add(std::string_view text) {
        const std::size_t n = std::min(text.size(), kRoom - size_);
        for (std::size_t i = 0; i < n; ++i)
            units_[size_ + i] = static_cast<unsigned char>(text[i]);
        size_ += n;
    }
    void Add(char c) {
        if (size_ < kRoom)
            units_[size_++] = static_cast<unsigned char>(c);
    }
    void AddNumber(long value) {
        char digits[24];
        char* const end = digits + sizeof digits;
        char* at = end;
        unsigned long magnitude =
            value < 0 ? 0UL - static_cast<unsigned long>(value) : static_cast<unsigned long>(value);
        do {
            *--at = static_cast<char>('0' + magnitude % 10);
            magnitude /= 10;
        } while (magnitude != 0);
        if (value < 0)
            *--at = '-';
        Add(std::string_view(at, static_cast<std::size_t>(end - at)));
    }
    std::u16string_view view() const { return {units_, size_}; }
    std::string Narrow() const { return std::string(units_, units_ + size_); }

private:
    // Kind, every style mark, four places, an id and the hidden mark, with room to spare.
    static constexpr std::size_t kRoom = 256;
    char16_t units_[kRoom];
    std::size_t size_ = 0;
};

void WriteStyleMarks(TagWriter& out, WORD classOrdinal, DWORD style) {
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
    const std::pair<std::string_view, long> place[] = {{" x=\"", control.x},
                                                       {" y=\"", control.y},
                                                       {" width=\"", control.width},
                                                       {" height=\"", control.height}};
    for (const auto& [name, value] : place) {
        out.Add(name);
        out.AddNumber(value);
        out.Add('"');
    }
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

constexpr NamedKind kKindTags[] = {
    {"button", {WideText::Constant(u"button"), WideText::Constant(u"</button>")}},
    {"checkbox", {WideText::Constant(u"checkbox"), WideText::Constant(u"</checkbox>")}},
    {"radiobutton", {WideText::Constant(u"radiobutton"), WideText::Constant(u"</radiobutton>")}},
    {"groupbox", {WideText::Constant(u"groupbox"), WideText::Constant(u"</groupbox>")}},
    {"edit", {WideText::Constant(u"edit"), WideText::Constant(u"</edit>")}},
    {"label", {WideText::Constant(u"label"), WideText::Constant(u"</label>")}},
    {"listbox", {WideText::Constant(u"listbox"), WideText::Constant(u"</listbox>")}},
    {"combobox", {WideText::Constant(u"combobox"), WideText::Constant(u"</combobox>")}},
    {"unknown", {WideText::Constant(u"unknown"), WideText::Constant(u"</unknown>")}},
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
    return marks.Narrow();
}

std::string ControlTagBody(const DialogControl& control, bool withHidden) {
    TagWriter body;
    WriteControlTagBody(body, control, withHidden);
    return body.Narrow();
}

WideText ControlStartTag(const DialogControl& control, bool withHidden) {
    TagWriter tag;
    tag.Add('<');
    WriteControlTagBody(tag, control, withHidden);
    tag.Add('>');
    return WideText(tag.view());
}

std::string DialogTagBody(const std::string& identifier) {
    return "dialog id=\"" + identifier + "\"";
}

} // namespace tervane
