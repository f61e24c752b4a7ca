#include "model/dialog_template.h"

#include "frame/diagnostics/exceptions.h"
#include "frame/diagnostics/trace.h"
#include "frame/resource.h"

namespace tervane {

namespace {

constexpr DWORD kExtendedSignature = 0xFFFF0001;
constexpr DWORD kSetFont = 0x40;
constexpr DWORD kFixedSys = 0x08;
constexpr WORD kOrdinalMark = 0xFFFF;

[[noreturn]] void Corrupted() {
    throw CParserException(kCorruptedDocumentMessage);
}

} // namespace

WORD CDialogTemplateReader::Word() {
    auto value = reader_.ReadU16LE();
    if (!value)
        Corrupted();
    return *value;
}

DWORD CDialogTemplateReader::Dword() {
    auto value = reader_.ReadU32LE();
    if (!value)
        Corrupted();
    return *value;
}

BYTE CDialogTemplateReader::Byte() {
    auto value = reader_.ReadU8();
    if (!value)
        Corrupted();
    return *value;
}

WORD CDialogTemplateReader::PeekWord() {
    ByteReader ahead = reader_;
    auto value = ahead.ReadU16LE();
    if (!value)
        Corrupted();
    return *value;
}

std::u16string CDialogTemplateReader::Text() {
    // Measured first, so that the text is made in one piece.
    ByteReader ahead = reader_;
    std::size_t count = 0;
    for (;;) {
        auto unit = ahead.ReadU16LE();
        if (!unit)
            Corrupted();
        if (*unit == 0)
            break;
        ++count;
    }
    auto units = reader_.ReadBytes(count * 2 + 2);
    if (!units)
        Corrupted();
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
    const DWORD first = Dword();
    if (first == kExtendedSignature) {
        isExtended = 1;
        header.helpId = Dword();
        header.extendedStyle = Dword();
        header.style = Dword();
    } else {
        isExtended = 0;
        header.style = first;
        header.extendedStyle = Dword();
    }
    header.isExtended = isExtended;
    header.itemCount = Word();
    header.x = static_cast<std::int16_t>(Word());
    header.y = static_cast<std::int16_t>(Word());
    header.cx = static_cast<std::int16_t>(Word());
    header.cy = static_cast<std::int16_t>(Word());

    const WORD menu = PeekWord();
    if (menu == 0) {
        Word();
    } else if (menu == kOrdinalMark) {
        Word();
        header.menuOrdinal = Word();
    } else {
        header.menuName = Text();
    }

    // The model keeps no number for a window class.
    const WORD windowClass = PeekWord();
    if (windowClass == 0) {
        Word();
    } else if (windowClass == kOrdinalMark) {
        Word();
        Word();
    } else {
        header.className = Text();
    }

    if (PeekWord() == 0)
        Word();
    else
        header.title = Text();

    if (header.style & (kSetFont | kFixedSys)) {
        Trace("DS_SETFONT is set");
        header.pointSize = Word();
        if (isExtended) {
            header.weight = Word();
            header.italic = Byte();
            header.charset = Byte();
        }
        header.fontName = Text();
    }
    Align();
    return header;
}

DialogControl CDialogTemplateReader::ReadControl() {
    DialogControl control;
    // The fields before the class come in one read, at fixed places.
    auto fixed = reader_.ReadBytes(isExtended ? 24 : 18);
    if (!fixed)
        Corrupted();
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

    if (PeekWord() == kOrdinalMark) {
        Word();
        control.classOrdinal = Word();
    } else {
        control.className = Text();
    }

    if (PeekWord() == kOrdinalMark) {
        Word();
        control.titleOrdinal = Word();
    } else {
        control.title = Text();
    }

    const WORD count = Word();
    if (count != 0) {
        auto bytes = reader_.ReadBytes(count);
        if (!bytes)
            Corrupted();
        control.creationData.assign(bytes->begin(), bytes->end());
    }
    Align();
    return control;
}

} // namespace tervane
