#pragma once
// One tag as the framework describes it to a parser: a plain record, so that
// tables of tags can be written as aggregates.
#include "host/wide_text.h"
#include "platform/win32/types.h"

namespace tervane {

struct TagDescriptor {
    WideText name;
    WideText tagText;
    LONG structural = 0;
    LONG inlineClass = 0;
    LONG endTag = 0;
    LONG startTag = 0;
    LONG inlineTag = 0;
};

} // namespace tervane
