#pragma once
// The host's side of a preview: the document replayed into the preview
// writer with the cursor at a place of it, as an editor does, and the
// previewer program asked to draw a resource of a file into a picture.
#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

#include "app/replay_host.h"
#include "host/filter_components.h"
#include "platform/com/com_ptr.h"

namespace tervane::app {

struct PreviewRequest {
    std::vector<ReplayEvent> events; // with the start and the end of the input
    std::string source;              // the executable the events came from
    LANGID language = 0;
    std::size_t cursor = 0; // the cursor stands before the event at this index
    std::string target;     // the translated copy the writer writes and shows
    bool sourceSide = false;
    bool dual = false;
    // Made by the caller, or else here from the module.
    ComPtr<IPreviewFileWriter> writer;
};

// Runs the preview writer over the events; it writes the target and starts
// the previewer on it. Throws CommandFailure with the writer's words when it
// refuses the place of the cursor or the run fails.
void RunPreviewWriter(PreviewRequest request);

// The place of the cursor for a resource given as "dialog:ID" or "menu:ID":
// the event behind its start tag. subject names the events in a failure.
std::size_t ResourceCursor(const std::vector<ReplayEvent>& events, const std::string& resource,
                           const std::string& subject);

enum class PictureFormat { Png, Svg };

// The previewer draws the resource (kind "dialog" or "menu") of file into
// picture and gives its fit report, as --fit-json writes it. side is "s" or
// "d". Throws CommandFailure with the previewer's words when it can't.
std::string DrawResource(const std::string& file, const std::string& kind, const std::string& id,
                         const char* side, const std::string& picture, PictureFormat format);

} // namespace tervane::app
