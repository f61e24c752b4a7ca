#pragma once
// A drawing of a fixed size, painted by the same code onto every surface.
#include <functional>
#include <string>

#include <cairo.h>

#include "preview/draw/dialog_scene.h"
#include "preview/draw/fit_check.h"
#include "preview/draw/menu_scene.h"
#include "preview/draw/text_measure.h"

namespace tervane::preview {

struct Picture {
    int width = 0;
    int height = 0;
    std::function<void(cairo_t*)> paint;
};

// Where the client area of a dialog begins in its picture.
struct DialogFrame {
    int clientX = 0;
    int clientY = 0;
};
DialogFrame FrameOf(const DialogScene& scene, const CTextMeasure& measure);

// The pictures keep references: scene, measure and findings must outlive them.
Picture DialogPicture(const DialogScene& scene, const CTextMeasure& measure,
                      const std::vector<FitFinding>& findings);
Picture MenuPicture(const std::vector<MenuNode>& bar, const CTextMeasure& measure);

// Throw std::runtime_error naming the file when it can't be written.
void WritePng(const Picture& picture, const std::string& path);
void WriteSvg(const Picture& picture, const std::string& path);

// Paints text into room with the clip Windows applies; wrapWidth as in
// CTextMeasure::Layout. Gives the layout's place, for the underline's test.
struct Colour {
    double r = 0, g = 0, b = 0;
};
void PaintText(cairo_t* cr, const CTextMeasure& measure, const HotkeyText& text, const Rect& room,
               Align align, bool wrap, bool centreVertically, Colour colour, bool bold = false);

} // namespace tervane::preview
