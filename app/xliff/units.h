#pragma once
// Where the translatable units stand in the events of a forward conversion.
// A unit is the content of one segment (the tags IsSegmentOpen and
// IsSegmentClose bound), and a menu item's shortcut is a unit of its own.
// Everything else (structure, line ends, the text of an edit box) stays in
// the events: the source file and its extraction are the skeleton.
#include <cstddef>
#include <string>
#include <vector>

#include "app/xliff/events.h"

namespace tervane::xliff {

// One resource: a menu, a dialog, a string block or a version block.
struct ResourceGroup {
    std::string id, restype, resname;
};

struct UnitPlace {
    // Stable across extractions of the same file: made from the resource path
    // (str.97, dlg.101.c1001, mnu.1.i100, ver.1.comments).
    std::string id;
    std::string restype, resname;
    std::string coord; // "x;y;cx;cy" in dialog units for a control, else empty
    bool translate = true;
    // A single & marks the hotkey and && stands for one ampersand, as in the
    // resource: menu items and the texts of dialog controls but a caption,
    // a list's entries and a label with SS_NOPREFIX.
    bool hotkeys = false;
    std::size_t group = 0;          // in Units::groups
    std::size_t begin = 0, end = 0; // the content, events [begin, end)
};

struct Units {
    std::vector<ResourceGroup> groups;
    std::vector<UnitPlace> places;
};

// Throws DocumentError when a segment holds a tag no unit can carry.
Units FindUnits(const EventList& events);

} // namespace tervane::xliff
