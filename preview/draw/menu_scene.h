#pragma once
// A menu as the bar and its drop-downs show it, read by the model's reader.
#include <string>
#include <vector>

#include "platform/win32/res_name.h"
#include "platform/win32/resources.h"
#include "preview/draw/hotkey_text.h"

namespace tervane::preview {

struct MenuNode {
    HotkeyText text;
    std::string shortcut; // what stands behind a tab, shown at the right
    bool separator = false;
    bool grayed = false;
    bool checked = false;
    bool popup = false;
    std::vector<MenuNode> children;
};

// The items of the bar. Throws std::runtime_error naming the menu when it is
// missing or its template is corrupted.
std::vector<MenuNode> ReadMenu(HMODULE module, const ResName& name);

} // namespace tervane::preview
