#include "preview/draw/picture.h"

#include <cairo-svg.h>
#include <memory>
#include <stdexcept>

namespace tervane::preview {

namespace {

using SurfacePtr = std::unique_ptr<cairo_surface_t, decltype(&cairo_surface_destroy)>;
using ContextPtr = std::unique_ptr<cairo_t, decltype(&cairo_destroy)>;

void Paint(const Picture& picture, cairo_surface_t* surface, const std::string& path) {
    ContextPtr cr(cairo_create(surface), &cairo_destroy);
    picture.paint(cr.get());
    cairo_surface_flush(surface);
    if (cairo_status(cr.get()) != CAIRO_STATUS_SUCCESS)
        throw std::runtime_error("can't draw " + path + ": " +
                                 cairo_status_to_string(cairo_status(cr.get())));
}

} // namespace

void WritePng(const Picture& picture, const std::string& path) {
    SurfacePtr surface(
        cairo_image_surface_create(CAIRO_FORMAT_RGB24, picture.width, picture.height),
        &cairo_surface_destroy);
    Paint(picture, surface.get(), path);
    const cairo_status_t status = cairo_surface_write_to_png(surface.get(), path.c_str());
    if (status != CAIRO_STATUS_SUCCESS)
        throw std::runtime_error("can't write " + path + ": " + cairo_status_to_string(status));
}

void WriteSvg(const Picture& picture, const std::string& path) {
    SurfacePtr surface(cairo_svg_surface_create(path.c_str(), picture.width, picture.height),
                       &cairo_surface_destroy);
    if (cairo_surface_status(surface.get()) != CAIRO_STATUS_SUCCESS)
        throw std::runtime_error("can't write " + path);
    Paint(picture, surface.get(), path);
    cairo_surface_finish(surface.get());
    if (cairo_surface_status(surface.get()) != CAIRO_STATUS_SUCCESS)
        throw std::runtime_error("can't write " + path + ": " +
                                 cairo_status_to_string(cairo_surface_status(surface.get())));
}

void PaintText(cairo_t* cr, const CTextMeasure& measure, const HotkeyText& text, const Rect& room,
               Align align, bool wrap, bool centreVertically, Colour colour, bool bold) {
    if (text.text.empty() || room.width <= 0 || room.height <= 0)
        return;
    LayoutPtr layout = measure.Layout(text, wrap ? room.width : 0, bold);
    if (wrap)
        pango_layout_set_alignment(layout.get(), align == Align::Center  ? PANGO_ALIGN_CENTER
                                                 : align == Align::Right ? PANGO_ALIGN_RIGHT
                                                                         : PANGO_ALIGN_LEFT);
    const TextSize size = CTextMeasure::Size(layout.get());
    int x = room.x;
    if (!wrap && align == Align::Center)
        x += (room.width - size.width) / 2;
    else if (!wrap && align == Align::Right)
        x += room.width - size.width;
    int y = room.y;
    if (centreVertically)
        y += (room.height - size.height) / 2;
    cairo_save(cr);
    cairo_rectangle(cr, room.x, room.y, room.width, room.height);
    cairo_clip(cr);
    cairo_set_source_rgb(cr, colour.r, colour.g, colour.b);
    cairo_move_to(cr, x, y);
    pango_cairo_update_context(cr, measure.Context());
    pango_layout_context_changed(layout.get());
    pango_cairo_show_layout(cr, layout.get());
    cairo_restore(cr);
}

} // namespace tervane::preview
