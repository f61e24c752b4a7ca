#pragma once
// A dialog as it stands on the screen: the template read by the model's
// reader, the items of its list controls from the dialog init data, and every
// control's rectangle in pixels, from dialog units and the font's base units.
#include <map>
#include <string>
#include <vector>

#include "model/dialog_template.h"
#include "platform/win32/res_name.h"
#include "platform/win32/resources.h"
#include "preview/draw/hotkey_text.h"
#include "preview/draw/text_measure.h"

namespace tervane::preview {

struct Rect {
    int x = 0, y = 0, width = 0, height = 0;
    int Right() const { return x + width; }
    int Bottom() const { return y + height; }
};

enum class Shape {
    PushButton,
    CheckBox,
    RadioButton,
    GroupBox,
    Label,
    Edit,
    ListBox,
    ComboBox,
    Picture, // icons, bitmaps: a frame where the image would be
    Frame,   // rectangles and etched lines of statics
    ScrollBar,
    Custom, // a class of its own: a frame with the class name
};

enum class Align { Left, Center, Right };

struct SceneControl {
    DialogControl source;
    Shape shape = Shape::Custom;
    std::string kind; // the document's kind word, or the class name
    Rect rect;
    HotkeyText text;
    std::vector<std::string> items;
    Align align = Align::Left;
    bool multiline = false;
    bool visible = true;
    bool boxRight = false; // BS_LEFTTEXT: the text before the box
    bool isDefault = false;
    int comboStyle = 0; // CBS_SIMPLE 1, CBS_DROPDOWN 2, CBS_DROPDOWNLIST 3
};

struct DialogSource {
    DialogHeader header;
    std::vector<DialogControl> controls;
    // The strings of the dialog init data by control id.
    std::map<WORD, std::vector<std::u16string>> items;
};

struct DialogScene {
    DialogFont font;
    BaseUnits units;
    HotkeyText title;
    bool hasCaption = false;
    int width = 0, height = 0; // the client area in pixels
    std::vector<SceneControl> controls;
};

// The identifier as the command line gives it: digits are a number.
ResName ResourceNameFromText(const std::string& text);

// Reads the dialog from a module loaded as data. Throws std::runtime_error
// naming the dialog when it is missing or its template is corrupted.
DialogSource ReadDialogSource(HMODULE module, const ResName& name);
DialogFont FontOf(const DialogHeader& header);
// MulDiv as Windows rounds it.
int DialogUnitsToPixels(int units, int base, int divisor);
DialogScene LayOutDialog(const DialogSource& source, const BaseUnits& units);

} // namespace tervane::preview
