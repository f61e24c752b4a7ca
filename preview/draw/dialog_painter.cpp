// The dialog's picture: the window with its caption, each control drawn by
// its kind in the colours of Windows 10, the dotted outline of every
// control's rectangle, and in red the controls whose text does not fit.
#include <algorithm>
#include <cmath>

#include "preview/draw/picture.h"

namespace tervane::preview {

namespace {

constexpr int kMargin = 8;
constexpr int kBorder = 1;
constexpr int kCheckBoxSize = 13;
constexpr int kComboArrowWidth = 17;

constexpr Colour kFace{0.94, 0.94, 0.94};
constexpr Colour kWhite{1, 1, 1};
constexpr Colour kText{0, 0, 0};
constexpr Colour kGrayText{0.43, 0.43, 0.43};
constexpr Colour kEdge{0.48, 0.48, 0.48};
constexpr Colour kButtonFace{0.88, 0.88, 0.88};
constexpr Colour kButtonEdge{0.68, 0.68, 0.68};
constexpr Colour kAccent{0, 0.47, 0.84};
constexpr Colour kOutline{0.6, 0.7, 0.85};
constexpr Colour kMisfit{1, 0, 0};

void SetColour(cairo_t* cr, Colour c) {
    cairo_set_source_rgb(cr, c.r, c.g, c.b);
}

void Fill(cairo_t* cr, const Rect& r, Colour c) {
    SetColour(cr, c);
    cairo_rectangle(cr, r.x, r.y, r.width, r.height);
    cairo_fill(cr);
}

// A one-pixel line on the pixels inside the rectangle's edge.
void Stroke(cairo_t* cr, const Rect& r, Colour c, double width = 1) {
    if (r.width <= 0 || r.height <= 0)
        return;
    SetColour(cr, c);
    cairo_set_line_width(cr, width);
    const double half = width / 2;
    cairo_rectangle(cr, r.x + half, r.y + half, r.width - width, r.height - width);
    cairo_stroke(cr);
}

Rect Offset(const Rect& r, int dx, int dy) {
    return {r.x + dx, r.y + dy, r.width, r.height};
}

void PaintCheckMark(cairo_t* cr, const Rect& box, bool radio) {
    if (radio) {
        cairo_new_path(cr);
        cairo_arc(cr, box.x + box.width / 2.0, box.y + box.height / 2.0, box.width / 2.0 - 0.5, 0,
                  2 * M_PI);
        SetColour(cr, kWhite);
        cairo_fill_preserve(cr);
        SetColour(cr, kText);
        cairo_set_line_width(cr, 1);
        cairo_stroke(cr);
        return;
    }
    Fill(cr, box, kWhite);
    Stroke(cr, box, kText);
}

void PaintItems(cairo_t* cr, const CTextMeasure& measure, const std::vector<std::string>& items,
                const Rect& list) {
    const int line = measure.CharHeight();
    int y = list.y;
    for (const std::string& item : items) {
        if (y >= list.Bottom())
            break;
        PaintText(cr, measure, HotkeyText{item}, {list.x + 2, y, list.width - 4, line}, Align::Left,
                  false, false, kText);
        y += line;
    }
}

void PaintArrow(cairo_t* cr, const Rect& button) {
    const double cx = button.x + button.width / 2.0, cy = button.y + button.height / 2.0;
    SetColour(cr, kText);
    cairo_move_to(cr, cx - 4, cy - 2);
    cairo_line_to(cr, cx + 4, cy - 2);
    cairo_line_to(cr, cx, cy + 2);
    cairo_close_path(cr);
    cairo_fill(cr);
}

void PaintCombo(cairo_t* cr, const CTextMeasure& measure, const SceneControl& c, const Rect& r) {
    const int fieldHeight = std::min(r.height, measure.CharHeight() + 8);
    const Rect field{r.x, r.y, r.width, fieldHeight};
    Fill(cr, field, kWhite);
    Stroke(cr, field, kEdge);
    if (c.comboStyle != 1) {
        const Rect arrow{field.Right() - kComboArrowWidth - 1, field.y + 1, kComboArrowWidth,
                         field.height - 2};
        PaintArrow(cr, arrow);
    }
    const std::string shown = !c.items.empty() ? c.items.front() : c.text.text;
    PaintText(cr, measure, HotkeyText{shown},
              {field.x + 3, field.y, field.width - 6 - kComboArrowWidth, field.height}, Align::Left,
              false, true, kText);
    // The list open below the field, within the height the template gives.
    if (r.height > fieldHeight) {
        const Rect list{r.x, field.Bottom(), r.width, r.height - fieldHeight};
        Fill(cr, list, kWhite);
        Stroke(cr, list, kEdge);
        PaintItems(cr, measure, c.items, {list.x + 1, list.y + 1, list.width - 2, list.height - 2});
    }
}

void PaintControl(cairo_t* cr, const CTextMeasure& measure, const DialogScene& scene,
                  const SceneControl& c, const Rect& r) {
    const TextRoom room = TextRoomOf(c, scene.units);
    const Rect textRoom = Offset(room.rect, r.x - c.rect.x, r.y - c.rect.y);
    const Colour ink = c.visible ? kText : kGrayText;
    switch (c.shape) {
    case Shape::PushButton:
        Fill(cr, r, kButtonFace);
        Stroke(cr, r, c.isDefault ? kAccent : kButtonEdge, c.isDefault ? 2 : 1);
        PaintText(cr, measure, c.text, textRoom, c.align, c.multiline, true, ink);
        break;
    case Shape::CheckBox:
    case Shape::RadioButton: {
        const int boxX = c.boxRight ? r.Right() - kCheckBoxSize : r.x;
        const Rect box{boxX, r.y + (r.height - kCheckBoxSize) / 2, kCheckBoxSize, kCheckBoxSize};
        PaintCheckMark(cr, box, c.shape == Shape::RadioButton);
        PaintText(cr, measure, c.text, textRoom, c.boxRight ? Align::Right : c.align, c.multiline,
                  true, ink);
        break;
    }
    case Shape::GroupBox: {
        const int top = r.y + measure.CharHeight() / 2;
        Stroke(cr, {r.x, top, r.width, r.Bottom() - top}, kButtonEdge);
        if (!c.text.text.empty()) {
            LayoutPtr layout = measure.Layout(c.text);
            const int width = std::min(CTextMeasure::Size(layout.get()).width, textRoom.width);
            Fill(cr, {textRoom.x - 2, r.y, width + 4, measure.CharHeight()}, kFace);
        }
        PaintText(cr, measure, c.text, textRoom, Align::Left, false, false, ink);
        break;
    }
    case Shape::Label:
        PaintText(cr, measure, c.text, textRoom, c.align, c.multiline, false, ink);
        break;
    case Shape::Edit:
        Fill(cr, r, kWhite);
        Stroke(cr, r, kEdge);
        PaintText(cr, measure, c.text, {r.x + 3, r.y + 2, r.width - 6, r.height - 4}, Align::Left,
                  c.multiline, !c.multiline, ink);
        break;
    case Shape::ListBox:
        Fill(cr, r, kWhite);
        Stroke(cr, r, kEdge);
        PaintItems(cr, measure, c.items, textRoom);
        break;
    case Shape::ComboBox:
        PaintCombo(cr, measure, c, r);
        break;
    case Shape::Picture:
        Stroke(cr, r, kEdge);
        SetColour(cr, kEdge);
        cairo_move_to(cr, r.x, r.y);
        cairo_line_to(cr, r.Right(), r.Bottom());
        cairo_move_to(cr, r.Right(), r.y);
        cairo_line_to(cr, r.x, r.Bottom());
        cairo_stroke(cr);
        break;
    case Shape::Frame:
        Stroke(cr, r, kButtonEdge);
        break;
    case Shape::ScrollBar:
        Fill(cr, r, kButtonFace);
        Stroke(cr, r, kButtonEdge);
        break;
    case Shape::Custom: {
        Stroke(cr, r, kButtonEdge);
        HotkeyText name{c.kind};
        PaintText(cr, measure, c.text.text.empty() ? name : c.text,
                  {r.x + 2, r.y + 1, r.width - 4, r.height - 2}, Align::Left, false, false,
                  kGrayText);
        break;
    }
    }
}

} // namespace

DialogFrame FrameOf(const DialogScene& scene, const CTextMeasure& measure) {
    const int caption = scene.hasCaption ? measure.CharHeight() + 10 : 0;
    return {kMargin + kBorder, kMargin + kBorder + caption};
}

Picture DialogPicture(const DialogScene& scene, const CTextMeasure& measure,
                      const std::vector<FitFinding>& findings) {
    const DialogFrame frame = FrameOf(scene, measure);
    Picture picture;
    picture.width = frame.clientX + scene.width + kBorder + kMargin;
    picture.height = frame.clientY + scene.height + kBorder + kMargin;
    picture.paint = [&scene, &measure, &findings, frame, picture](cairo_t* cr) {
        Fill(cr, {0, 0, picture.width, picture.height}, kWhite);
        const Rect window{kMargin, kMargin, frame.clientX - kMargin + scene.width + kBorder,
                          frame.clientY - kMargin + scene.height + kBorder};
        Fill(cr, window, kFace);
        if (scene.hasCaption) {
            const Rect bar{window.x, window.y, window.width, frame.clientY - window.y};
            Fill(cr, bar, kWhite);
            PaintText(cr, measure, scene.title, {bar.x + 8, bar.y, bar.width - 16, bar.height},
                      Align::Left, false, true, kText);
        }
        Stroke(cr, window, kAccent);
        for (const SceneControl& c : scene.controls) {
            const Rect r = Offset(c.rect, frame.clientX, frame.clientY);
            PaintControl(cr, measure, scene, c, r);
        }
        // The outlines last, so that no control hides another's room.
        const double dash[] = {1, 2};
        for (const SceneControl& c : scene.controls) {
            cairo_set_dash(cr, dash, c.visible ? 0 : 2, 0);
            Stroke(cr, Offset(c.rect, frame.clientX, frame.clientY), kOutline);
        }
        cairo_set_dash(cr, nullptr, 0, 0);
        for (const FitFinding& finding : findings)
            Stroke(cr, Offset(scene.controls[finding.control].rect, frame.clientX, frame.clientY),
                   kMisfit, 2);
    };
    return picture;
}

} // namespace tervane::preview
