#include "preview/draw/menu_scene.h"

#include <stdexcept>

#include "frame/resource.h"
#include "model/menu_resource.h"

namespace tervane::preview {

namespace {

constexpr WORD kGrayed = 0x1;
constexpr WORD kChecked = 0x8;
constexpr WORD kPopup = 0x10;
constexpr DWORD kExtendedSeparator = 0x800;
constexpr DWORD kExtendedGrayed = 0x3;
constexpr DWORD kExtendedChecked = 0x8;
constexpr WORD kExtendedPopup = 0x1;

void SplitShortcut(MenuNode& node, const std::u16string& text) {
    const std::size_t tab = text.find(u'\t');
    node.text = ParseHotkeys(std::u16string_view(text).substr(0, tab));
    if (tab != std::u16string::npos)
        node.shortcut = ParseHotkeys(std::u16string_view(text).substr(tab + 1), true).text;
}

// The reader keeps records that stand for no item (the closing ones) with
// their fields unset.
bool IsItem(const MenuItemRecord& record, bool extended) {
    return extended ? record.type != 0xFFFFFFFF : record.flags != 0xFFFF;
}

MenuNode ToNode(const MenuItemRecord& record, bool extended) {
    MenuNode node;
    if (extended) {
        node.separator = (record.type & kExtendedSeparator) != 0;
        node.grayed = (record.state & kExtendedGrayed) != 0;
        node.checked = (record.state & kExtendedChecked) != 0;
        node.popup = (record.resInfo & kExtendedPopup) != 0;
        SplitShortcut(node, record.extendedText);
    } else {
        node.popup = (record.flags & kPopup) != 0;
        node.separator = !node.popup && record.text.empty();
        node.grayed = (record.flags & kGrayed) != 0;
        node.checked = (record.flags & kChecked) != 0;
        SplitShortcut(node, record.text);
    }
    for (const MenuItemRecord& child : record.children)
        if (IsItem(child, extended))
            node.children.push_back(ToNode(child, extended));
    return node;
}

} // namespace

std::vector<MenuNode> ReadMenu(HMODULE module, const ResName& name) {
    HRSRC info = FindResourceA(module, name, ResName(kMenuType));
    const void* data = info ? LockResource(LoadResource(module, info)) : nullptr;
    if (data == nullptr)
        throw std::runtime_error("no menu " + name.ToString() + " in the file");
    const Bytes bytes(static_cast<const std::uint8_t*>(data), SizeofResource(module, info));
    CMenuResource menu;
    menu.identifierText = name.ToString();
    menu.size = static_cast<DWORD>(bytes.size());
    menu.extendedVersion = bytes.size() >= 2 && bytes[0] == 1 && bytes[1] == 0 ? 1 : 0;
    try {
        CMenuCommand().Execute(bytes, &menu);
    } catch (const std::exception&) {
        throw std::runtime_error("the template of menu " + name.ToString() + " is corrupted");
    }
    std::vector<MenuNode> bar;
    // The first record is the menu's root tag.
    for (std::size_t i = 1; i < menu.items.size(); ++i)
        if (IsItem(menu.items[i], menu.IsExtended()))
            bar.push_back(ToNode(menu.items[i], menu.IsExtended()));
    return bar;
}

} // namespace tervane::preview
