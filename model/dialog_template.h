#pragma once
// The records of a dialog template, plain or extended, and the reader that
// fills them. Nothing is validated: odd values are taken as they stand, and
// only a read past the end of the resource fails.
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/byte_reader.h"
#include "platform/win32/types.h"

namespace tervane {

// Wide text that the template may leave out altogether.
using OptionalText = std::optional<std::u16string>;

// The predefined classes a control may name by number.
enum ControlClass : WORD {
    kButtonClass = 0x80,
    kEditClass = 0x81,
    kStaticClass = 0x82,
    kListBoxClass = 0x83,
    kScrollBarClass = 0x84,
    kComboBoxClass = 0x85,
};

struct DialogHeader {
    DWORD isExtended = 0;
    DWORD helpId = 0;
    DWORD style = 0;
    DWORD extendedStyle = 0;
    WORD itemCount = 0;
    std::int16_t x = 0, y = 0, cx = 0, cy = 0;
    OptionalText menuName;
    OptionalText className; // a class given by number comes back as none
    WORD menuOrdinal = 0;
    OptionalText title; // none where the template holds an empty one
    WORD pointSize = 0;
    WORD weight = 0;
    BYTE italic = 0;
    BYTE charset = 0;
    OptionalText fontName; // none without a font block
};

struct DialogControl {
    DWORD helpId = 0;
    DWORD style = 0;
    DWORD extendedStyle = 0;
    std::int16_t x = 0, y = 0;
    std::int16_t height = 0, width = 0;
    WORD id = 0;
    OptionalText className;
    WORD classOrdinal = 0;
    OptionalText title; // none where the title is a number; may be empty
    std::vector<std::uint8_t> creationData;
    WORD idHigh = 0;
    WORD titleOrdinal = 0;
    WORD tabIndex = 0; // place in the template, from 0
};

class CDialogTemplateReader {
public:
    // Reads the header at the start of data and stays on the first control.
    // Throws CParserException where the header runs past the data.
    DialogHeader ReadHeader(Bytes data);
    // Reads the control at the position and stays on the next one.
    DialogControl ReadControl();

    DWORD isExtended = 0;

private:
    // Each read names the template's field that a failure reports.
    WORD Word(const char* field);
    DWORD Dword(const char* field);
    BYTE Byte(const char* field);
    WORD PeekWord(const char* field);
    // A zero-terminated wide text; the terminator is read, not kept.
    std::u16string Text(const char* field);
    // To the next multiple of 4; past the end it stops at the end, where the
    // next read fails.
    void Align();

    ByteReader reader_{Bytes{}};
};

} // namespace tervane
