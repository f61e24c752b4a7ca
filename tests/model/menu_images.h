#pragma once
// Menu templates built in code, and a menu's records spelt out one a line.
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "model/menu_resource.h"
#include "platform/locale/code_pages.h"

namespace tervane::test {

class MenuImage {
public:
    // The header: version 0 and header size 0, or version 1 and offset 4.
    explicit MenuImage(bool extended) {
        Word(extended ? 1 : 0);
        Word(extended ? 4 : 0);
        if (extended)
            Dword(0);
    }
    MenuImage& Word(std::uint16_t w) {
        bytes.push_back(static_cast<std::uint8_t>(w));
        bytes.push_back(static_cast<std::uint8_t>(w >> 8));
        return *this;
    }
    MenuImage& Dword(std::uint32_t d) { return Word(static_cast<std::uint16_t>(d)).Word(d >> 16); }
    MenuImage& Text(const std::u16string& text) {
        for (char16_t c : text)
            Word(c);
        return Word(0);
    }
    MenuImage& Plain(std::uint16_t flags, std::uint16_t id, const std::u16string& text) {
        return Word(flags).Word(id).Text(text);
    }
    MenuImage& PlainPopup(std::uint16_t flags, const std::u16string& text) {
        return Word(flags | 0x10).Text(text);
    }
    MenuImage& Extended(std::uint32_t type, std::uint32_t id, std::uint16_t resInfo,
                        const std::u16string& text, std::uint32_t helpId = 0) {
        Dword(type).Dword(0).Dword(id).Word(resInfo).Text(text);
        while (bytes.size() % 4)
            bytes.push_back(0);
        if (resInfo & 1)
            Dword(helpId);
        return *this;
    }

    std::vector<std::uint8_t> bytes;
};

inline void SpellRecord(const MenuItemRecord& record, int depth, std::vector<std::string>& out) {
    std::string line(static_cast<std::size_t>(depth) * 2, ' ');
    for (const auto& piece : record.pieces) {
        if (const auto* text = TextOf(*piece))
            line += "[" + Narrow(text->text) + "]";
        else if (const auto* tag = TagOf(*piece))
            line += tag->inlineTag ? "{" + Narrow(tag->tagText) + "}" : Narrow(tag->tagText);
    }
    out.push_back(line);
    for (const MenuItemRecord& child : record.children)
        SpellRecord(child, depth + 1, out);
}

// One line for each record, depth first, indented by two blanks a level:
// texts in brackets, inline tags in braces, other tags as they are.
inline std::vector<std::string> Spell(const std::vector<MenuItemRecord>& items) {
    std::vector<std::string> out;
    for (const MenuItemRecord& record : items)
        SpellRecord(record, 0, out);
    return out;
}

// The menu read from image, with the header fields the enumeration would set.
inline std::unique_ptr<CMenuResource> ReadMenu(const MenuImage& image, bool extended,
                                               const std::string& id = "1") {
    auto menu = std::make_unique<CMenuResource>();
    menu->identifierText = id;
    menu->size = static_cast<DWORD>(image.bytes.size());
    if (extended)
        menu->extendedVersion = 1;
    CMenuCommand().Execute(image.bytes, menu.get());
    return menu;
}

} // namespace tervane::test
