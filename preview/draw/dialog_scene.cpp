#include "preview/draw/dialog_scene.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

#include "frame/resource.h"
#include "frame/resource_parser_impl.h"
#include "model/dialog_controls.h"
#include "model/dlginit_table.h"
#include "platform/locale/code_pages.h"
#include "platform/locale/utf8.h"

namespace tervane::preview {

namespace {

constexpr DWORD kVisible = 0x10000000;
constexpr DWORD kCaption = 0x00C00000;
constexpr DWORD kButtonLeftText = 0x20;
constexpr DWORD kButtonMultiline = 0x2000;
constexpr DWORD kButtonAlignMask = 0x300;
constexpr DWORD kStaticNoPrefix = 0x80;
constexpr DWORD kEditMultiline = 0x4;

Bytes LoadBytes(HMODULE module, const ResName& name, WORD type) {
    HRSRC info = FindResourceA(module, name, ResName(type));
    if (info == nullptr)
        return {};
    const void* data = LockResource(LoadResource(module, info));
    if (data == nullptr)
        return {};
    return Bytes(static_cast<const std::uint8_t*>(data), SizeofResource(module, info));
}

// Windows' own controls, by the name a template may give instead of the number.
WORD ClassOrdinal(const DialogControl& control) {
    if (!control.className)
        return control.classOrdinal;
    static const std::pair<std::u16string_view, WORD> kNames[] = {
        {u"button", kButtonClass},   {u"edit", kEditClass},           {u"static", kStaticClass},
        {u"listbox", kListBoxClass}, {u"scrollbar", kScrollBarClass}, {u"combobox", kComboBoxClass},
    };
    std::u16string lower = *control.className;
    for (char16_t& c : lower)
        if (c >= u'A' && c <= u'Z')
            c = static_cast<char16_t>(c + 32);
    for (const auto& [name, ordinal] : kNames)
        if (lower == name)
            return ordinal;
    return 0;
}

void ShapeButton(SceneControl& out, DWORD style) {
    switch (style & 0xF) {
    case 2:
    case 3:
    case 5:
    case 6:
        out.shape = Shape::CheckBox;
        out.align = Align::Left;
        break;
    case 4:
    case 9:
        out.shape = Shape::RadioButton;
        out.align = Align::Left;
        break;
    case 7:
        out.shape = Shape::GroupBox;
        out.align = Align::Left;
        break;
    case 0xB:
        out.shape = Shape::Custom;
        break;
    default:
        out.shape = Shape::PushButton;
        out.align = Align::Center;
        out.isDefault = (style & 0xF) == 1 || (style & 0xF) == 0xD || (style & 0xF) == 0xF;
    }
    switch (style & kButtonAlignMask) {
    case 0x100:
        out.align = Align::Left;
        break;
    case 0x200:
        out.align = Align::Right;
        break;
    case 0x300:
        out.align = Align::Center;
        break;
    default:
        break;
    }
    out.multiline = (style & kButtonMultiline) != 0;
    out.boxRight = (style & kButtonLeftText) != 0;
}

void ShapeStatic(SceneControl& out, DWORD style) {
    const DWORD type = style & 0x1F;
    out.multiline = true;
    switch (type) {
    case 0:
        out.align = Align::Left;
        break;
    case 1:
        out.align = Align::Center;
        break;
    case 2:
        out.align = Align::Right;
        break;
    case 0xB:
    case 0xC:
        out.align = Align::Left;
        out.multiline = false;
        break;
    case 3:
    case 0xE:
    case 0xF:
        out.shape = Shape::Picture;
        return;
    default:
        out.shape = Shape::Frame;
        return;
    }
    out.shape = Shape::Label;
}

// The language of the init data, whose strings are in its ANSI code page.
WORD FirstLanguage(HMODULE module, const ResName& name) {
    WORD language = 0;
    EnumResourceLanguagesA(
        module, ResName(kDlgInitType), name,
        [](HMODULE, const ResName&, const ResName&, WORD found, LONG_PTR param) -> BOOL {
            *reinterpret_cast<WORD*>(param) = found;
            return FALSE;
        },
        reinterpret_cast<LONG_PTR>(&language));
    return language;
}

} // namespace

ResName ResourceNameFromText(const std::string& text) {
    if (!text.empty() && text.size() <= 5 &&
        std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; })) {
        const long value = std::stol(text);
        if (value <= 0xFFFF)
            return ResName(static_cast<WORD>(value));
    }
    return ResName::FromText(text);
}

DialogSource ReadDialogSource(HMODULE module, const ResName& name) {
    const Bytes data = LoadBytes(module, name, kDialogType);
    if (data.empty())
        throw std::runtime_error("no dialog " + name.ToString() + " in the file");
    DialogSource source;
    try {
        CDialogTemplateReader reader;
        source.header = reader.ReadHeader(data);
        for (WORD i = 0; i < source.header.itemCount; ++i)
            source.controls.push_back(reader.ReadControl());
    } catch (const std::exception&) {
        throw std::runtime_error("the template of dialog " + name.ToString() + " is corrupted");
    }
    const Bytes init = LoadBytes(module, name, kDlgInitType);
    if (!init.empty()) {
        CDlgInitData records;
        try {
            records.Parse(init, init.size());
        } catch (const std::exception&) {
            throw std::runtime_error("the init data of dialog " + name.ToString() +
                                     " are corrupted");
        }
        const UINT codePage = CResourceParserImpl::GetCodePage(FirstLanguage(module, name));
        for (const auto& [id, list] : records.strings) {
            auto& items = source.items[id];
            for (std::string text : list) {
                while (!text.empty() && text.back() == '\0')
                    text.pop_back();
                items.push_back(Widen(text, codePage != 0 ? codePage : 1252));
            }
        }
    }
    return source;
}

DialogFont FontOf(const DialogHeader& header) {
    DialogFont font;
    if (header.fontName) {
        font.name = *header.fontName;
        font.pointSize = header.pointSize;
        font.weight = header.isExtended && header.weight != 0 ? header.weight : 400;
        font.italic = header.isExtended && header.italic != 0;
    }
    return font;
}

int DialogUnitsToPixels(int units, int base, int divisor) {
    const long product = static_cast<long>(units) * base;
    // Half away from zero, as MulDiv rounds.
    const long half = divisor / 2;
    return static_cast<int>(product >= 0 ? (product + half) / divisor
                                         : -((-product + half) / divisor));
}

DialogScene LayOutDialog(const DialogSource& source, const BaseUnits& units) {
    DialogScene scene;
    scene.font = FontOf(source.header);
    scene.units = units;
    scene.hasCaption = (source.header.style & kCaption) == kCaption;
    if (source.header.title)
        scene.title = ParseHotkeys(*source.header.title, true);
    scene.width = DialogUnitsToPixels(source.header.cx, units.x, 4);
    scene.height = DialogUnitsToPixels(source.header.cy, units.y, 8);

    for (const DialogControl& control : source.controls) {
        SceneControl out;
        out.source = control;
        out.visible = (control.style & kVisible) != 0;
        out.rect = {DialogUnitsToPixels(control.x, units.x, 4),
                    DialogUnitsToPixels(control.y, units.y, 8),
                    DialogUnitsToPixels(control.width, units.x, 4),
                    DialogUnitsToPixels(control.height, units.y, 8)};
        const WORD ordinal = ClassOrdinal(control);
        const char* kind = GetControlKind(ordinal, control.style);
        out.kind = kind;
        bool noPrefix = false;
        switch (ordinal) {
        case kButtonClass:
            ShapeButton(out, control.style);
            break;
        case kStaticClass:
            ShapeStatic(out, control.style);
            noPrefix = (control.style & kStaticNoPrefix) != 0;
            break;
        case kEditClass:
            out.shape = Shape::Edit;
            out.multiline = (control.style & kEditMultiline) != 0;
            noPrefix = true;
            break;
        case kListBoxClass:
            out.shape = Shape::ListBox;
            break;
        case kComboBoxClass:
            out.shape = Shape::ComboBox;
            out.comboStyle = static_cast<int>(control.style & 3);
            break;
        case kScrollBarClass:
            out.shape = Shape::ScrollBar;
            break;
        default:
            out.shape = Shape::Custom;
            if (control.className) {
                out.kind.clear();
                locale::AppendUtf8(out.kind, *control.className);
            }
        }
        if (control.title)
            out.text = ParseHotkeys(*control.title, noPrefix);
        if (auto found = source.items.find(control.id); found != source.items.end())
            for (const std::u16string& item : found->second)
                out.items.push_back(ParseHotkeys(item, true).text);
        scene.controls.push_back(std::move(out));
    }
    return scene;
}

} // namespace tervane::preview
