#pragma once
// What the translator sees of a control besides its text: its kind, the few
// style bits that matter to the text, and its place, all in the control's tag.
#include <string>
#include <string_view>

#include "host/wide_text.h"
#include "label/pieces/label_piece.h"
#include "model/dialog_template.h"

namespace tervane {

// The kind from the class number and the low 8 bits of the style, tested bit
// by bit and not as a button type: "button", "checkbox", "radiobutton",
// "groupbox", "edit", "label", "listbox", "combobox", or "unknown", which is
// never written.
const char* GetControlKind(WORD classOrdinal, DWORD style);

// A kind's tag name and end tag, made once and shared by every control, and
// the words of its start tags: those of "<kind", as the attributes that
// follow add none.
struct ControlKindTags {
    WideText name;
    ConstantTagText closeTag;
    std::uint32_t openWords;
};
const ControlKindTags& GetControlKindTags(std::string_view kind);

// ` style="NAME NAME"`, or empty. The names keep their order, so that
// `"SS_NOPREFIX`, with its quote, marks a label that shows '&' as it is.
std::string GetStyleMarks(WORD classOrdinal, DWORD style);

inline constexpr const char* kNoPrefixMark = "\"SS_NOPREFIX";

// The body of a control's start tag: kind, marks, place and size, id unless
// it is 0xFFFF, and hidden="yes" for an invisible control when asked.
std::string ControlTagBody(const DialogControl& control, bool withHidden);
// The whole start tag, "<" body ">", built wide.
WideText ControlStartTag(const DialogControl& control, bool withHidden);

// The body of the dialog's start tag: dialog id="IDENTIFIER".
std::string DialogTagBody(const std::string& identifier);

} // namespace tervane
