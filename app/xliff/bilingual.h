#pragma once
// The two roads between a forward conversion's events and the bilingual
// document: the units of a new document, and the events a merge replays,
// rebuilt from the source's events with the document's translations.
#include <string>
#include <vector>

#include "app/xliff/document.h"
#include "app/xliff/events.h"

namespace tervane::xliff {

// A new document of the source's units, without targets; the caller fills in
// the file's facts.
Document MakeDocument(const EventList& events);

struct Notice {
    std::string unitId;
    int line = 0;
    std::string text;
};

struct Merged {
    EventList events;
    std::vector<Notice> warnings;
};

// The source's events with each unit's content replaced by its target. A unit
// without a target (or with an empty one) keeps the source's events, with a
// warning; a unit the translator may not change always does. A target whose
// placeholders a tool flattened into text gets them back from its text. Throws
// DocumentError for a unit the source doesn't have, a stale source and a
// target whose placeholders are not the source's.
Merged ApplyDocument(const EventList& source, const Document& document);

} // namespace tervane::xliff
