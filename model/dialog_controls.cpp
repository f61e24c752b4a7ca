#include "model/dialog_controls.h"

#include <cstdio>

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

} // namespace

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
    std::string id;
    if (control.id != kNoId)
        id = " id=\"" + std::to_string(control.id) + "\"";
    char place[96];
    std::snprintf(place, sizeof place, " x=\"%ld\" y=\"%ld\" width=\"%ld\" height=\"%ld\"",
                  static_cast<long>(control.x), static_cast<long>(control.y),
                  static_cast<long>(control.width), static_cast<long>(control.height));
    std::string body = GetControlKind(control.classOrdinal, control.style);
    body += GetStyleMarks(control.classOrdinal, control.style);
    body += place;
    body += id;
    if (withHidden && !(control.style & kVisible))
        body += " hidden=\"yes\"";
    return body;
}

std::string DialogTagBody(const std::string& identifier) {
    return "dialog id=\"" + identifier + "\"";
}

} // namespace tervane
