#pragma once
// The first half of a merge from the bilingual document: the source file read
// again and checked against the document's header, and its events with each
// unit's content taken from the document. The second half replays them into
// the writer, as `merge --events` does.
#include <string>

#include "app/output_file.h"
#include "app/replay_host.h"
#include "app/xliff/bilingual.h"
#include "app/xliff/document.h"

namespace tervane::app {

struct DocumentMerge {
    std::string source; // the source file found
    xliff::Document document;
    xliff::EventList events;
};

// Throws CommandFailure naming the document, the line and the unit for a
// document that does not fit its source; warnings go to standard error. With
// verify, a document that verification finds broken is refused too; a dry run
// only shows the events and leaves that question to `tervane verify`. The
// warnings are shown as the command's, or not at all without one.
DocumentMerge PrepareDocumentMerge(const std::string& documentPath,
                                   const std::string& sourceOverride, bool verify = true,
                                   const char* command = "merge");

// The events as a host replays them: between the start and the end of the input.
std::vector<ReplayEvent> ReplayEventsOf(const xliff::EventList& events);

// Where in the document a message of the writer points: "DOC:LINE: unit ID"
// for the control or menu item it names, else its resource's group; empty
// when the message names neither.
std::string LocateMessage(const xliff::Document& document, const std::string& documentPath,
                          const std::string& message);

// The events as `extract --events` writes them; commits the output.
void WriteEventLines(const xliff::EventList& events, OutputFile& output);

} // namespace tervane::app
