#pragma once
// A menu item's text cut into pieces: text runs, inline hotkey marks and
// escapes, and the shortcut behind the tab framed by <shortcut> tags.
#include <string_view>

#include "model/menu_records.h"

namespace tervane {

// Appends the pieces of text to the record's pieces, parsed with the record's
// label parser. A label that fails to parse keeps the pieces found so far.
void AnalyseMenuText(MenuItemRecord& record, std::u16string_view text);

} // namespace tervane
