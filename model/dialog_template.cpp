#include "model/dialog_template.h"

#include "frame/diagnostics/trace.h"
#include "model/read_failure.h"

namespace tervane {

namespace {

constexpr DWORD kExtendedSignature = 0xFFFF0001;
constexpr DWORD kSetFont = 0x40;
constexpr DWORD kFixedSys = 0x08;
constexpr WORD kOrdinalMark = 0xFFFF;

} // namespace

WORD CDialogTemplateReader::Word(const char* field) {
    auto value = reader_.ReadU16LE();
    if (!value)
        ThrowCorrupted(reader_.Offset(), field);
    return *value;
}

DWORD CDialogTemplateReader::Dword(const char* field) {
    auto value = reader_.ReadU32LE();
    if (!value)
        ThrowCorrupted(reader_.Offset(), field);
    return *value;
}

BYTE CDialogTemplateReader::Byte(const char* field) {
    auto value = reader_.ReadU8();
    if (!value)
        ThrowCorrupted(reader_.Offset(), field);
    return *value;
}

WORD CDialogTemplateReader::PeekWord(const char* field) {
    ByteReader ahead = reader_;
    auto value = ahead.ReadU16LE();
    if (!value)
        ThrowCorrupted(reader_.Offset(), field);
    return *value;
}

std::u16string CDialogTemplateReader::Text(const char* field) {
    // Measured first, so that the text is made in one piece.
    ByteReader ahead = reader_;
    std::size_t count = 0;
    for (;;) {
        auto unit = ahead.ReadU16LE();
        if (!unit)
            ThrowCorrupted(reader_.Offset(), field);
        if (*unit == 0)
            break;
        ++count;
    }
    auto units = reader_.ReadBytes(count * 2 + 2);
    if (!units)
        ThrowCorrupted(reader_.Offset(), field);
    std::u16string text(count, u'\0');
    for (std::size_t i = 0; i < count; ++i)
        text[i] = static_cast<char16_t>(LoadU16LE(units->data() + 2 * i));
    return text;
}

void CDialogTemplateReader::Align() {
    if (!reader_.AlignTo(4))
        reader_.Seek(reader_.Size());
}

DialogHeader CDialogTemplateReader::ReadHeader(Bytes data) {
    reader_ = ByteReader(data);
    DialogHeader header;
    const DWORD first = Dword("style");
    if (first == kExtendedSignature) {
        isExtended = 1;
        header.helpId = Dword("helpID");
        header.extendedStyle = Dword("exStyle");
        header.style = Dword("style");
    } else {
        isExtended = 0;
        header.style = first;
        header.extendedStyle = Dword("exStyle");
    }
    header.isExtended = isExtended;
    header.itemCount = Word("cDlgItems");
    header.x = static_cast<std::int16_t>(Word("x"));
    header.y = static_cast<std::int16_t>(Word("y"));
    header.cx = static_cast<std::int16_t>(Word("cx"));
    header.cy = static_cast<std::int16_t>(Word("cy"));

    const WORD menu = PeekWord("menu");
    if (menu == 0) {
        Word("menu");
    } else if (menu == kOrdinalMark) {
        Word("menu");
        header.menuOrdinal = Word("menu");
    } else {
        header.menuName = Text("menu");
    }

    // The model keeps no number for a window class.
    const WORD windowClass = PeekWord("windowClass");
    if (windowClass == 0) {
        Word("windowClass");
    } else if (windowClass == kOrdinalMark) {
        Word("windowClass");
        Word("windowClass");
    } else {
        header.className = Text("windowClass");
    }

    if (PeekWord("title") == 0)
        Word("title");
    else
        header.title = Text("title");

    if (header.style & (kSetFont | kFixedSys)) {
        Trace("DS_SETFONT is set");
        header.pointSize = Word("pointsize");
        if (isExtended) {
            header.weight = Word("weight");
            header.italic = Byte("italic");
            header.charset = Byte("charset");
        }
        header.fontName = Text("typeface");
    }
    Align();
    return header;
}

DialogControl CDialogTemplateReader::ReadControl() {
    DialogControl control;
    // The fields before the class come in one read, at fixed places.
    auto fixed = reader_.ReadBytes(isExtended ? 24 : 18);
    if (!fixed)
        ThrowCorrupted(reader_.Offset(), "control");
    const std::uint8_t* field = fixed->data();
    if (isExtended) {
        control.helpId = LoadU32LE(field);
        control.extendedStyle = LoadU32LE(field + 4);
        control.style = LoadU32LE(field + 8);
        field += 12;
    } else {
        control.style = LoadU32LE(field);
        control.extendedStyle = LoadU32LE(field + 4);
        field += 8;
    }
    control.x = static_cast<std::int16_t>(LoadU16LE(field));
    control.y = static_cast<std::int16_t>(LoadU16LE(field + 2));
    control.width = static_cast<std::int16_t>(LoadU16LE(field + 4));
    control.height = static_cast<std::int16_t>(LoadU16LE(field + 6));
    control.id = LoadU16LE(field + 8);
    if (isExtended)
        control.idHigh = LoadU16LE(field + 10);

    if (PeekWord("windowClass") == kOrdinalMark) {
        Word("windowClass");
        control.classOrdinal = Word("windowClass");
    } else {
        control.className = Text("windowClass");
    }

    if (PeekWord("title") == kOrdinalMark) {
        Word("title");
        control.titleOrdinal = Word("title");
    } else {
        control.title = Text("title");
    }

    const WORD count = Word("extraCount");
    if (count != 0) {
        const std::size_t at = reader_.Offset();
        auto bytes = reader_.ReadBytes(count);
        if (!bytes)
            ThrowCorrupted(at, "creation data");
        control.creationData.assign(bytes->begin(), bytes->end());
    }
    Align();
    return control;
}

} // namespace tervane
