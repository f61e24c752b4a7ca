#pragma once
// Text measured and laid out by Pango, at 96 dots an inch as Windows lays out
// dialogs, in the Liberation face that stands in for the dialog's font. The
// same context serves the measure and the drawing, so that both agree.
#include <memory>
#include <string>
#include <string_view>

#include <pango/pangocairo.h>

#include "preview/draw/hotkey_text.h"

namespace tervane::preview {

struct DialogFont {
    std::u16string name; // as the template names it; empty for the system font
    int pointSize = 8;
    int weight = 400;
    bool italic = false;
};

// The metric-compatible face for a Windows font name.
const char* SubstituteFace(std::u16string_view windowsName);

struct TextSize {
    int width = 0;
    int height = 0;
    int lines = 0;
};

// Dialog base units: the average width of the alphabet and the character
// height of the font, as GdiGetCharDimensions gives them.
struct BaseUnits {
    int x = 0;
    int y = 0;
};

template <typename T, void (*Free)(T*)> struct GDeleter {
    void operator()(T* p) const { Free(p); }
};
using LayoutPtr = std::unique_ptr<PangoLayout, GDeleter<void, g_object_unref>>;

class CTextMeasure {
public:
    explicit CTextMeasure(const DialogFont& font);
    ~CTextMeasure();
    CTextMeasure(const CTextMeasure&) = delete;
    CTextMeasure& operator=(const CTextMeasure&) = delete;

    const BaseUnits& Units() const { return units_; }
    int CharHeight() const { return units_.y; }
    // A layout of the text with its hotkey underlined; wrapWidth > 0 wraps at
    // words to that many pixels, 0 keeps one line.
    LayoutPtr Layout(const HotkeyText& text, int wrapWidth = 0, bool bold = false) const;
    static TextSize Size(PangoLayout* layout);
    // The widest single word: what word wrapping can never narrow.
    int WidestWord(const std::string& text) const;
    PangoContext* Context() const { return context_; }

private:
    PangoFontMap* fontMap_ = nullptr;
    PangoContext* context_ = nullptr;
    PangoFontDescription* description_ = nullptr;
    BaseUnits units_;
};

} // namespace tervane::preview
