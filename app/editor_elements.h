#pragma once
// The bilingual document as the editor shows it: every tag and text of the
// source's conversion in order, with each unit standing as a translation unit
// element followed by the parts of its source and of its target. Places are
// line and column in the XLIFF file; what the file does not hold (the
// structure, which comes from the source file) stands at its group's line,
// column 0.
#include <string>
#include <string_view>
#include <vector>

#include "app/xliff/document.h"
#include "app/xliff/events.h"
#include "label/pieces/label_piece.h"

namespace tervane::app {

struct EditorElement {
    enum class Kind { Tag, Text, Unit };
    Kind kind = Kind::Text;
    std::u16string text; // the tag text, or the text
    std::u16string name; // a tag's bare name
    LONG startMark = 0, endMark = 0;
    PieceRange range;
    // A unit's parts, as indexes of the elements behind it.
    std::vector<std::size_t> sourceParts, targetParts;
};

using EditorElements = std::vector<EditorElement>;

// events: the source file's conversion, or empty when the file is gone (the
// units alone then). xml: the document's bytes, for the columns. A unit
// without a target is plain text of its source, outside any translation unit;
// a unit the document lacks has no element at all.
EditorElements BuildEditorElements(const xliff::Document& document, const xliff::EventList& events,
                                   std::string_view xml);

// The UTF-16 offsets of content that starts at column from (1-based) of line
// and ends at the closing tag: the column of each unit of the decoded text.
std::vector<LONG> ContentColumns(std::string_view line, std::size_t from);

} // namespace tervane::app
