// The menu's picture: the bar, and below it every drop-down open at once,
// each pop-up inside one to the right of its item. The sizes follow the text
// as Windows sizes menus to it, so a menu has nothing that does not fit.
#include <algorithm>

#include "preview/draw/picture.h"

namespace tervane::preview {

namespace {

constexpr int kMargin = 8;
constexpr int kBarPadding = 7;
constexpr int kGutter = 24;      // room for a check mark left of the text
constexpr int kArrowRoom = 20;   // room for a pop-up's arrow right of it
constexpr int kShortcutGap = 24; // between the text and its shortcut
constexpr int kSeparatorHeight = 9;
constexpr int kGap = 6;

constexpr Colour kText{0, 0, 0};
constexpr Colour kGrayText{0.43, 0.43, 0.43};
constexpr Colour kEdge{0.6, 0.6, 0.6};
constexpr Colour kBack{0.95, 0.95, 0.95};

struct Placed {
    const MenuNode* node;
    Rect rect;
};

int TextWidth(const CTextMeasure& measure, const HotkeyText& text) {
    LayoutPtr layout = measure.Layout(text);
    return CTextMeasure::Size(layout.get()).width;
}

int ItemHeight(const CTextMeasure& measure, const MenuNode& node) {
    return node.separator ? kSeparatorHeight : measure.CharHeight() + 8;
}

// A drop-down and its pop-ups, placed at (x, y); gives the right edge and the
// bottom of all it covers.
struct Extent {
    int right = 0, bottom = 0;
};

class MenuLayout {
public:
    explicit MenuLayout(const CTextMeasure& measure) : measure_(measure) {}

    Extent PlaceDropDown(const std::vector<MenuNode>& items, int x, int y) {
        int textWidth = 0, shortcutWidth = 0, height = 2;
        for (const MenuNode& item : items) {
            if (!item.separator) {
                textWidth = std::max(textWidth, TextWidth(measure_, item.text));
                shortcutWidth =
                    std::max(shortcutWidth, TextWidth(measure_, HotkeyText{item.shortcut}));
            }
            height += ItemHeight(measure_, item);
        }
        const int width = kGutter + textWidth +
                          (shortcutWidth > 0 ? kShortcutGap + shortcutWidth : 0) + kArrowRoom + 2;
        dropDowns.push_back({x, y, width, height});
        Extent extent{x + width, y + height};
        int itemY = y + 1, childY = y;
        for (const MenuNode& item : items) {
            const Rect row{x + 1, itemY, width - 2, ItemHeight(measure_, item)};
            rows.push_back({&item, row});
            if (item.popup && !item.children.empty()) {
                childY = std::max(childY, row.y - 1);
                const Extent child = PlaceDropDown(item.children, x + width + kGap, childY);
                extent.right = std::max(extent.right, child.right);
                extent.bottom = std::max(extent.bottom, child.bottom);
                childY = child.bottom + kGap;
            }
            itemY += row.height;
        }
        return extent;
    }

    std::vector<Rect> dropDowns;
    std::vector<Placed> rows;
    std::vector<Placed> barItems;
    Rect bar;

private:
    const CTextMeasure& measure_;
};

void PaintRow(cairo_t* cr, const CTextMeasure& measure, const Placed& row) {
    const MenuNode& item = *row.node;
    const Rect& r = row.rect;
    if (item.separator) {
        cairo_set_source_rgb(cr, kEdge.r, kEdge.g, kEdge.b);
        cairo_rectangle(cr, r.x + kGutter, r.y + r.height / 2, r.width - kGutter - 4, 1);
        cairo_fill(cr);
        return;
    }
    const Colour ink = item.grayed ? kGrayText : kText;
    if (item.checked)
        PaintText(cr, measure, HotkeyText{"\u2713"}, {r.x, r.y, kGutter, r.height}, Align::Center,
                  false, true, ink);
    PaintText(cr, measure, item.text, {r.x + kGutter, r.y, r.width - kGutter, r.height},
              Align::Left, false, true, ink);
    if (!item.shortcut.empty())
        PaintText(cr, measure, HotkeyText{item.shortcut},
                  {r.x, r.y, r.width - kArrowRoom, r.height}, Align::Right, false, true, ink);
    if (item.popup) {
        const double cx = r.Right() - kArrowRoom / 2.0, cy = r.y + r.height / 2.0;
        cairo_set_source_rgb(cr, ink.r, ink.g, ink.b);
        cairo_move_to(cr, cx - 2, cy - 4);
        cairo_line_to(cr, cx + 2, cy);
        cairo_line_to(cr, cx - 2, cy + 4);
        cairo_close_path(cr);
        cairo_fill(cr);
    }
}

} // namespace

Picture MenuPicture(const std::vector<MenuNode>& bar, const CTextMeasure& measure) {
    auto layout = std::make_shared<MenuLayout>(measure);
    const int barHeight = measure.CharHeight() + 8;
    int x = kMargin, dropX = kMargin;
    Extent all{kMargin, kMargin + barHeight};
    for (const MenuNode& item : bar) {
        const int width = TextWidth(measure, item.text) + 2 * kBarPadding;
        layout->barItems.push_back({&item, {x, kMargin, width, barHeight}});
        if (item.popup && !item.children.empty()) {
            dropX = std::max(dropX, x);
            const Extent drop = layout->PlaceDropDown(item.children, dropX, kMargin + barHeight);
            all.right = std::max(all.right, drop.right);
            all.bottom = std::max(all.bottom, drop.bottom);
            dropX = drop.right + kGap;
        }
        x += width;
    }
    all.right = std::max(all.right, x);
    layout->bar = {kMargin, kMargin, std::max(x, all.right) - kMargin, barHeight};

    Picture picture;
    picture.width = all.right + kMargin;
    picture.height = all.bottom + kMargin;
    picture.paint = [layout, &measure, picture](cairo_t* cr) {
        cairo_set_source_rgb(cr, 1, 1, 1);
        cairo_paint(cr);
        const Rect& b = layout->bar;
        cairo_set_source_rgb(cr, kBack.r, kBack.g, kBack.b);
        cairo_rectangle(cr, b.x, b.y, b.width, b.height);
        cairo_fill(cr);
        for (const Placed& item : layout->barItems)
            PaintText(cr, measure, item.node->text, item.rect, Align::Center, false, true,
                      item.node->grayed ? kGrayText : kText);
        for (const Rect& d : layout->dropDowns) {
            cairo_set_source_rgb(cr, kBack.r, kBack.g, kBack.b);
            cairo_rectangle(cr, d.x, d.y, d.width, d.height);
            cairo_fill(cr);
            cairo_set_source_rgb(cr, kEdge.r, kEdge.g, kEdge.b);
            cairo_set_line_width(cr, 1);
            cairo_rectangle(cr, d.x + 0.5, d.y + 0.5, d.width - 1, d.height - 1);
            cairo_stroke(cr);
        }
        for (const Placed& row : layout->rows)
            PaintRow(cr, measure, row);
    };
    return picture;
}

} // namespace tervane::preview
