#pragma once
// Menu templates built in code, and a menu's records spelt out one a line.
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "model/menu_resource.h"
#include "tests/model/test_images.h"

namespace tervane::test {

struct MenuImage {
    // The header: version 0 and header size 0, or version 1, offset 4 and help id 0.
    explicit MenuImage(bool extended) : extended(extended) {
        Word(extended).Word(extended ? 4 : 0);
        if (extended)
            Word(0).Word(0);
    }
    MenuImage& Word(std::uint16_t w) {
        bytes.insert(bytes.end(),
                     {static_cast<std::uint8_t>(w), static_cast<std::uint8_t>(w >> 8)});
        return *this;
    }
    MenuImage& Text(const std::u16string& text) {
        for (char16_t c : text)
            Word(c);
        return Word(0);
    }
    MenuImage& Plain(std::uint16_t flags, std::uint16_t id, const std::u16string& text) {
        return Word(flags).Word(id).Text(text);
    }
    MenuImage& Popup(std::uint16_t flags, const std::u16string& text) {
        return Word(flags | 0x10).Text(text);
    }
    MenuImage& Extended(std::uint32_t type, std::uint32_t id, std::uint16_t resInfo,
                        const std::u16string& text, std::uint32_t helpId = 0) {
        for (std::uint32_t d : {type, 0u, id})
            Word(static_cast<std::uint16_t>(d)).Word(static_cast<std::uint16_t>(d >> 16));
        Word(resInfo).Text(text);
        bytes.resize((bytes.size() + 3) & ~std::size_t{3});
        if (resInfo & 1)
            Word(static_cast<std::uint16_t>(helpId)).Word(static_cast<std::uint16_t>(helpId >> 16));
        return *this;
    }
    // The menu read with the header fields the enumeration would set.
    std::unique_ptr<CMenuResource> Read(const std::string& id = "1", long sizeChange = 0) const {
        auto menu = std::make_unique<CMenuResource>();
        menu->identifierText = id;
        menu->size = static_cast<DWORD>(static_cast<long>(bytes.size()) + sizeChange);
        menu->extendedVersion = extended ? 1 : 0;
        CMenuCommand().Execute(bytes, menu.get());
        return menu;
    }

    bool extended;
    std::vector<std::uint8_t> bytes;
};

// One line a record, depth first, two blanks a level.
inline void Spell(const MenuItemRecord& record, int depth, std::vector<std::string>& out) {
    out.push_back(std::string(static_cast<std::size_t>(depth) * 2, ' ') + Spell(record.pieces));
    for (const MenuItemRecord& child : record.children)
        Spell(child, depth + 1, out);
}

inline std::vector<std::string> Spell(const std::vector<MenuItemRecord>& items) {
    std::vector<std::string> out;
    for (const MenuItemRecord& record : items)
        Spell(record, 0, out);
    return out;
}

} // namespace tervane::test
