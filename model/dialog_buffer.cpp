// A dialog written anew in the extended form, whatever form its source had,
// with the translated titles in place of the source's.
#include "frame/diagnostics/trace.h"
#include "model/dialog_controls.h"
#include "model/dialog_item.h"

namespace tervane {

namespace {

constexpr DWORD kExtendedSignature = 0xFFFF0001;
constexpr DWORD kFontStyles = 0x48; // DS_SETFONT, DS_FIXEDSYS

void WriteHeader(CResourceBuffer& buffer, const DialogHeader& header, const OptionalText& title) {
    buffer.WriteDword(kExtendedSignature);
    buffer.WriteDword(header.isExtended ? header.helpId : 0);
    buffer.WriteDword(header.extendedStyle);
    buffer.WriteDword(header.style);
    buffer.WriteWord(header.itemCount);
    buffer.WriteWord(static_cast<WORD>(header.x));
    buffer.WriteWord(static_cast<WORD>(header.y));
    buffer.WriteWord(static_cast<WORD>(header.cx));
    buffer.WriteWord(static_cast<WORD>(header.cy));
    if (header.menuName)
        buffer.WriteOptionalText(header.menuName);
    else if (header.menuOrdinal == 0)
        buffer.WriteWord(0);
    else
        buffer.WriteOrdinal(header.menuOrdinal);
    buffer.WriteOptionalText(header.className);
    if (title && !title->empty())
        buffer.WriteOptionalText(title);
    else
        buffer.WriteWord(0);
    if (header.style & kFontStyles) {
        buffer.WriteWord(header.pointSize);
        buffer.WriteWord(header.isExtended ? header.weight : 0);
        buffer.WriteByte(header.isExtended ? header.italic : 0);
        buffer.WriteByte(header.isExtended ? header.charset : 0);
        buffer.WriteOptionalText(header.fontName);
    }
    buffer.Align();
}

void WriteControl(CResourceBuffer& buffer, const DialogControl& control, bool sourceExtended) {
    buffer.WriteDword(sourceExtended ? control.helpId : 0);
    buffer.WriteDword(control.extendedStyle);
    buffer.WriteDword(control.style);
    buffer.WriteWord(static_cast<WORD>(control.x));
    buffer.WriteWord(static_cast<WORD>(control.y));
    buffer.WriteWord(static_cast<WORD>(control.width));
    buffer.WriteWord(static_cast<WORD>(control.height));
    buffer.WriteWord(control.id);
    buffer.WriteWord(sourceExtended ? control.idHigh : 0);
    if (control.className)
        buffer.WriteOptionalText(control.className);
    else
        buffer.WriteOrdinal(control.classOrdinal);
    if (!control.title)
        buffer.WriteOrdinal(control.titleOrdinal);
    else if (control.title->empty())
        buffer.WriteWord(0);
    else
        buffer.WriteOptionalText(control.title);
    if (control.creationData.empty()) {
        buffer.WriteWord(0);
    } else {
        buffer.WriteWord(buffer.Narrowed(control.creationData.size(), "a control's creation data"));
        for (std::uint8_t byte : control.creationData)
            buffer.WriteByte(byte);
    }
    buffer.Align();
}

} // namespace

bool CDialogItem::TakesNewText(const DialogControl& control) {
    if (!control.title || control.title->empty() || control.className)
        return false;
    // A scroll bar gives no element, and the title of a combo or list box
    // went to its list of items.
    const std::string_view kind = GetControlKind(control.classOrdinal, control.style);
    return kind != "unknown" && kind != "combobox" && kind != "listbox";
}

void CDialogItem::ConstructDialogBuffer() {
    buffer.clear();
    if (!skipped)
        ComposeTexts();
    std::size_t next = 0;
    OptionalText title = header.title;
    if (!skipped && title && !title->empty()) {
        if (next < newTexts.size() && !newTexts[next].empty())
            title = newTexts[next];
        ++next;
        Trace("Title of the dialog is replaced.\n");
    }
    WriteHeader(buffer, header, title);

    ControlList written = emittedControls;
    if (!skipped) {
        for (DialogControl& control : written) {
            if (!TakesNewText(control))
                continue;
            // An empty new text keeps the source's title.
            if (next < newTexts.size() && !newTexts[next].empty())
                control.title = newTexts[next];
            ++next;
        }
        Trace("Title of the dialog items are replaced.\n");
        Trace("Sorting dialog items depends upon tab order and groupbox...........\n");
        SortByTabIndex(written, true);
        Trace("Dialog items are sorted depends upon tab order and groupbox.\n");
    }
    for (const DialogControl& control : written)
        WriteControl(buffer, control, header.isExtended != 0);
    Trace("Dialog buffer is constructed.\n");
}

} // namespace tervane
