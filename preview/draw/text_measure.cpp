#include "preview/draw/text_measure.h"

#include <algorithm>
#include <cmath>

#include "platform/locale/utf8.h"

namespace tervane::preview {

namespace {

constexpr double kDotsPerInch = 96;

bool SameName(std::u16string_view a, std::u16string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char16_t x, char16_t y) {
        auto lower = [](char16_t c) { return c >= u'A' && c <= u'Z' ? char16_t(c + 32) : c; };
        return lower(x) == lower(y);
    });
}

} // namespace

const char* SubstituteFace(std::u16string_view name) {
    static constexpr std::u16string_view kMono[] = {u"Courier New", u"Courier",        u"Fixedsys",
                                                    u"Terminal",    u"Lucida Console", u"Consolas"};
    static constexpr std::u16string_view kSerif[] = {u"Times New Roman", u"Times", u"MS Serif",
                                                     u"Georgia"};
    for (auto face : kMono)
        if (SameName(name, face))
            return "Liberation Mono";
    for (auto face : kSerif)
        if (SameName(name, face))
            return "Liberation Serif";
    // MS Shell Dlg, MS Sans Serif, Tahoma, Segoe UI, Arial and the unknown:
    // Liberation Sans has Arial's metrics.
    return "Liberation Sans";
}

CTextMeasure::CTextMeasure(const DialogFont& font) {
    fontMap_ = pango_cairo_font_map_new();
    context_ = pango_font_map_create_context(fontMap_);
    pango_cairo_context_set_resolution(context_, kDotsPerInch);
    cairo_font_options_t* options = cairo_font_options_create();
    // Whole-pixel advances as GDI has them, and the same in every surface.
    cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_ON);
    cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_SLIGHT);
    cairo_font_options_set_antialias(options, CAIRO_ANTIALIAS_GRAY);
    pango_cairo_context_set_font_options(context_, options);
    cairo_font_options_destroy(options);

    description_ = pango_font_description_new();
    pango_font_description_set_family(description_, SubstituteFace(font.name));
    // A dialog without a font of its own has the system font, 8x16 units;
    // 12 points of the sans face come close.
    const int points = font.name.empty() ? 12 : std::max(font.pointSize, 1);
    // lfHeight = -MulDiv(points, 96, 72): the em height in pixels.
    const int pixels = static_cast<int>(std::lround(points * kDotsPerInch / 72.0));
    pango_font_description_set_absolute_size(description_, pixels * PANGO_SCALE);
    pango_font_description_set_weight(description_,
                                      static_cast<PangoWeight>(std::clamp(font.weight, 100, 1000)));
    if (font.italic)
        pango_font_description_set_style(description_, PANGO_STYLE_ITALIC);
    pango_context_set_font_description(context_, description_);

    LayoutPtr alphabet(pango_layout_new(context_));
    pango_layout_set_text(alphabet.get(), "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz",
                          -1);
    const TextSize size = Size(alphabet.get());
    units_.x = (size.width / 26 + 1) / 2;
    PangoFontMetrics* metrics = pango_context_get_metrics(context_, description_, nullptr);
    units_.y = PANGO_PIXELS_CEIL(pango_font_metrics_get_ascent(metrics)) +
               PANGO_PIXELS_CEIL(pango_font_metrics_get_descent(metrics));
    pango_font_metrics_unref(metrics);
}

CTextMeasure::~CTextMeasure() {
    pango_font_description_free(description_);
    g_object_unref(context_);
    g_object_unref(fontMap_);
}

LayoutPtr CTextMeasure::Layout(const HotkeyText& text, int wrapWidth, bool bold) const {
    LayoutPtr layout(pango_layout_new(context_));
    pango_layout_set_text(layout.get(), text.text.c_str(), static_cast<int>(text.text.size()));
    PangoAttrList* attributes = pango_attr_list_new();
    if (text.HasHotkey()) {
        PangoAttribute* underline = pango_attr_underline_new(PANGO_UNDERLINE_SINGLE);
        underline->start_index = static_cast<guint>(text.underlineBegin);
        underline->end_index = static_cast<guint>(text.underlineEnd);
        pango_attr_list_insert(attributes, underline);
    }
    if (bold)
        pango_attr_list_insert(attributes, pango_attr_weight_new(PANGO_WEIGHT_BOLD));
    pango_layout_set_attributes(layout.get(), attributes);
    pango_attr_list_unref(attributes);
    if (wrapWidth > 0) {
        pango_layout_set_width(layout.get(), wrapWidth * PANGO_SCALE);
        pango_layout_set_wrap(layout.get(), PANGO_WRAP_WORD);
    }
    return layout;
}

TextSize CTextMeasure::Size(PangoLayout* layout) {
    PangoRectangle logical;
    pango_layout_get_pixel_extents(layout, nullptr, &logical);
    return {logical.width, logical.height, pango_layout_get_line_count(layout)};
}

int CTextMeasure::WidestWord(const std::string& text) const {
    int widest = 0;
    std::size_t start = 0;
    while (start < text.size()) {
        std::size_t end = text.find_first_of(" \t\r\n", start);
        if (end == std::string::npos)
            end = text.size();
        if (end > start) {
            LayoutPtr word(pango_layout_new(context_));
            pango_layout_set_text(word.get(), text.data() + start, static_cast<int>(end - start));
            widest = std::max(widest, Size(word.get()).width);
        }
        start = end + 1;
    }
    return widest;
}

} // namespace tervane::preview
