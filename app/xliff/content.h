#pragma once
// The content of a unit as a translator sees it: runs of text and the
// placeholders that must not change, each placeholder holding its native code
// (%s, %1!d!, \n). With hotkeys, a text is in the resource's own notation: a
// single & marks the hotkey and && stands for one ampersand.
#include <span>
#include <string>
#include <vector>

#include "app/xliff/events.h"

namespace tervane::xliff {

struct Piece {
    bool placeholder = false;
    std::u16string text;
    bool operator==(const Piece&) const = default;
};

using Content = std::vector<Piece>;

// The events of one segment's content (texts and inline tags) as a unit's
// content: adjacent texts join.
Content ToContent(std::span<const Event> events, bool hotkeys);

// Back to events: a placeholder is the inline tag of its code; with hotkeys a
// single & is the inline hotkey tag. No empty text is made.
EventList ToEvents(const Content& content, bool hotkeys);

// The content's texts and codes, end to end, as the resource would hold them.
std::u16string Flatten(const Content& content);

} // namespace tervane::xliff
