#pragma once
// One tag as the framework describes it to a parser: a plain record, so that
// tables of tags can be written as aggregates.
#include <string>

#include "platform/win32/types.h"

namespace tervane {

struct TagDescriptor {
    std::u16string name;
    std::u16string tagText;
    LONG structural = 0;
    LONG inlineClass = 0;
    LONG endTag = 0;
    LONG startTag = 0;
    LONG inlineTag = 0;
};

} // namespace tervane
