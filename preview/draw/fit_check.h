#pragma once
// Does each control's text fit the room its rectangle leaves at the dialog's
// font? Measured by Pango as the painter lays the text out, so that what is
// reported is what the picture shows cut.
#include <string>
#include <vector>

#include "preview/draw/dialog_scene.h"
#include "preview/draw/text_measure.h"

namespace tervane::preview {

enum class Misfit {
    Width, // a line, a word or an item wider than its room: cut at the side
    Lines, // wrapped lines below the bottom: out of sight
};

struct FitFinding {
    std::size_t control = 0; // index in the scene
    Misfit problem = Misfit::Width;
    std::string text; // the text or the item that does not fit
    int neededWidth = 0, neededHeight = 0;
    int roomWidth = 0, roomHeight = 0;
};

const char* MisfitName(Misfit problem);

// The room for text inside a control: its rectangle less frames, boxes and
// margins. Width 0 for a control whose text the check passes over.
struct TextRoom {
    Rect rect;
    bool wraps = false;
};
TextRoom TextRoomOf(const SceneControl& control, const BaseUnits& units);

std::vector<FitFinding> CheckFit(const DialogScene& scene, const CTextMeasure& measure);

} // namespace tervane::preview
