#include "preview/draw/fit_check.h"

#include <algorithm>

namespace tervane::preview {

namespace {

// Windows' metrics at 96 dots an inch.
constexpr int kCheckBoxSize = 13;
constexpr int kCheckTextGap = 4;
constexpr int kButtonMargin = 3;
constexpr int kListBorder = 2;
constexpr int kComboArrowWidth = 17;

Rect Inset(const Rect& r, int dx, int dy) {
    return {r.x + dx, r.y + dy, std::max(0, r.width - 2 * dx), std::max(0, r.height - 2 * dy)};
}

} // namespace

const char* MisfitName(Misfit problem) {
    return problem == Misfit::Width ? "width" : "lines";
}

TextRoom TextRoomOf(const SceneControl& control, const BaseUnits& units) {
    const Rect& r = control.rect;
    switch (control.shape) {
    case Shape::PushButton:
        return {Inset(r, kButtonMargin, kButtonMargin), control.multiline};
    case Shape::CheckBox:
    case Shape::RadioButton: {
        const int box = kCheckBoxSize + kCheckTextGap;
        Rect room{control.boxRight ? r.x : r.x + box, r.y, std::max(0, r.width - box), r.height};
        return {room, control.multiline};
    }
    case Shape::GroupBox: {
        // The title stands on the top edge, a character's width in from each side.
        const int inset = units.x + 2;
        return {Rect{r.x + inset, r.y, std::max(0, r.width - 2 * inset), units.y}, false};
    }
    case Shape::Label:
        return {r, control.multiline};
    case Shape::ListBox:
        return {Inset(r, kListBorder, kListBorder), false};
    case Shape::ComboBox: {
        Rect room = Inset(r, kListBorder, kListBorder);
        room.width = std::max(0, room.width - kComboArrowWidth);
        return {room, false};
    }
    default:
        return {};
    }
}

std::vector<FitFinding> CheckFit(const DialogScene& scene, const CTextMeasure& measure) {
    std::vector<FitFinding> findings;
    for (std::size_t i = 0; i < scene.controls.size(); ++i) {
        const SceneControl& control = scene.controls[i];
        const TextRoom room = TextRoomOf(control, scene.units);
        if (room.rect.width == 0 && room.rect.height == 0)
            continue;
        auto report = [&](Misfit problem, const std::string& text, const TextSize& size) {
            findings.push_back(
                {i, problem, text, size.width, size.height, room.rect.width, room.rect.height});
        };
        if (control.shape == Shape::ListBox || control.shape == Shape::ComboBox) {
            for (const std::string& item : control.items) {
                LayoutPtr layout = measure.Layout(HotkeyText{item});
                const TextSize size = CTextMeasure::Size(layout.get());
                if (size.width > room.rect.width) {
                    report(Misfit::Width, item, size);
                    break;
                }
            }
            continue;
        }
        if (control.text.text.empty())
            continue;
        if (!room.wraps) {
            LayoutPtr layout = measure.Layout(control.text);
            const TextSize size = CTextMeasure::Size(layout.get());
            if (size.width > room.rect.width)
                report(Misfit::Width, control.text.text, size);
            continue;
        }
        // Word wrapping never breaks a word: one wider than the room is cut.
        const int widestWord = measure.WidestWord(control.text.text);
        LayoutPtr layout = measure.Layout(control.text, std::max(room.rect.width, 1));
        TextSize size = CTextMeasure::Size(layout.get());
        if (widestWord > room.rect.width) {
            size.width = widestWord;
            report(Misfit::Width, control.text.text, size);
        } else if (size.height > room.rect.height) {
            report(Misfit::Lines, control.text.text, size);
        }
    }
    return findings;
}

} // namespace tervane::preview
