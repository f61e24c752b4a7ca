#pragma once
// Dialog templates built in code, in either form, with the layout's own
// alignment: whole header and each whole control record to 4 bytes.
#include <optional>

#include "tests/model/test_images.h"

namespace tervane::test {

// A name or a number, as a template gives menus, classes and titles.
struct NameOrOrdinal {
    std::optional<std::u16string> name;
    std::uint16_t ordinal = 0;
    static NameOrOrdinal Name(std::u16string text) { return {std::move(text), 0}; }
    static NameOrOrdinal Number(std::uint16_t value) { return {std::nullopt, value}; }
};

struct TemplateControl {
    std::uint32_t style = 0x50000000; // WS_CHILD | WS_VISIBLE
    std::int16_t x = 0, y = 0, cx = 10, cy = 10;
    std::uint16_t id = 1;
    NameOrOrdinal windowClass = NameOrOrdinal::Number(0x82);
    NameOrOrdinal title = NameOrOrdinal::Name(u"");
    std::vector<std::uint8_t> creationData;
};

struct TemplateDialog {
    bool extended = false;
    std::uint32_t style = 0x80000000;  // WS_POPUP
    std::optional<NameOrOrdinal> menu; // none: a zero word
    std::optional<NameOrOrdinal> windowClass;
    std::u16string title;
    bool fontBlock = false; // written where the style asks for one
    std::vector<TemplateControl> controls;
    std::optional<std::uint16_t> itemCount; // none: the number of controls
};

inline void Item(Bytes& b, const std::optional<NameOrOrdinal>& item) {
    if (!item)
        b.U16(0);
    else if (item->name)
        b.Text(*item->name);
    else
        b.U16(0xFFFF).U16(item->ordinal);
}

inline std::vector<std::uint8_t> BuildTemplate(const TemplateDialog& d) {
    Bytes b;
    if (d.extended)
        b.U32(0xFFFF0001).U32(0x1234).U32(0); // signature, help id, extended style
    b.U32(d.style);
    if (!d.extended)
        b.U32(0);
    b.U16(d.itemCount.value_or(static_cast<std::uint16_t>(d.controls.size())));
    b.U16(0).U16(0).U16(200).U16(100);
    Item(b, d.menu);
    Item(b, d.windowClass);
    b.Text(d.title);
    if (d.fontBlock) {
        b.U16(8);
        if (d.extended)
            b.U16(700).U8(1).U8(204);
        b.Text(u"MS Shell Dlg");
    }
    for (const TemplateControl& c : d.controls) {
        b.Align();
        if (d.extended)
            b.U32(0x77).U32(0); // help id, extended style
        b.U32(c.style);
        if (!d.extended)
            b.U32(0);
        for (std::int16_t v : {c.x, c.y, c.cx, c.cy})
            b.U16(static_cast<std::uint16_t>(v));
        b.U16(c.id);
        if (d.extended)
            b.U16(0xABCD); // high word of the id
        Item(b, c.windowClass);
        Item(b, c.title);
        b.U16(static_cast<std::uint16_t>(c.creationData.size()));
        b.bytes.insert(b.bytes.end(), c.creationData.begin(), c.creationData.end());
    }
    return b.bytes;
}

} // namespace tervane::test
