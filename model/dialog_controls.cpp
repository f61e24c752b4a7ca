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

void AppendNumber(std::string& out, long value) {
    char digits[24];
    char* end = std::to_chars(digits, digits + sizeof digits, value).ptr;
    out += std::string_view(digits, static_cast<std::size_t>(end - digits));
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
    std::string marks;
    for (const StyleMark& mark : kStyleMarks) {
        if (mark.classOrdinal != classOrdinal || !(style & mark.bit))
            continue;
        marks += marks.empty() ? "\"" : " ";
        marks += mark.name;
    }
    return marks.empty() ? marks : " style=" + marks + "\"";
}

std::string ControlTagBody(const DialogControl& control, bool withHidden) {
    std::string body;
    body.reserve(128);
    body += GetControlKind(control.classOrdinal, control.style);
    body += GetStyleMarks(control.classOrdinal, control.style);
    const std::pair<const char*, long> place[] = {{" x=\"", control.x},
                                                  {" y=\"", control.y},
                                                  {" width=\"", control.width},
                                                  {" height=\"", control.height}};
    for (const auto& [name, value] : place) {
        body += name;
        AppendNumber(body, value);
        body += '"';
    }
    if (control.id != kNoId) {
        body += " id=\"";
        AppendNumber(body, control.id);
        body += '"';
    }
    if (withHidden && !(control.style & kVisible))
        body += " hidden=\"yes\"";
    return body;
}

std::u16string ControlStartTag(const DialogControl& control, bool withHidden) {
    // All of the body is ASCII, which widens unit for unit.
    const std::string body = ControlTagBody(control, withHidden);
    std::u16string tag(body.size() + 2, u'<');
    std::copy(body.begin(), body.end(), tag.begin() + 1);
    tag.back() = u'>';
    return tag;
}

std::string DialogTagBody(const std::string& identifier) {
    return "dialog id=\"" + identifier + "\"";
}

} // namespace tervane
