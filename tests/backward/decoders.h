#pragma once
// Rebuilt resources read back by their own layouts, apart from the models'
// readers: a string block's counted strings, a dialog template's fields and a
// version block walked by its lengths.
#include <gtest/gtest.h>

#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "model/dialog_template.h"
#include "platform/locale/code_pages.h"

namespace tervane::test {

// The counted strings of a block, by their place.
inline std::vector<std::string> Strings(const std::vector<std::uint8_t>& b) {
    std::vector<std::string> out;
    for (std::size_t at = 0; at + 2 <= b.size();) {
        std::u16string text(b[at] | b[at + 1] << 8, u'\0');
        at += 2;
        for (char16_t& unit : text) {
            unit = static_cast<char16_t>(b.at(at) | b.at(at + 1) << 8);
            at += 2;
        }
        out.push_back(Narrow(text));
    }
    return out;
}

inline std::string Shown(const OptionalText& text) {
    return text ? "'" + Narrow(*text) + "'" : "none";
}

// Every field the template keeps, header first, then the controls in template order.
inline std::vector<std::string> Described(const std::vector<std::uint8_t>& bytes) {
    CDialogTemplateReader reader;
    const DialogHeader h = reader.ReadHeader(bytes);
    std::vector<std::string> out;
    std::ostringstream header;
    header << h.style << ' ' << h.extendedStyle << ' ' << h.helpId << ' ' << h.itemCount << ' '
           << h.x << ' ' << h.y << ' ' << h.cx << ' ' << h.cy << ' ' << Shown(h.menuName) << ' '
           << h.menuOrdinal << ' ' << Shown(h.className) << ' ' << Shown(h.title) << ' '
           << h.pointSize << ' ' << h.weight << ' ' << int(h.italic) << ' ' << int(h.charset) << ' '
           << Shown(h.fontName);
    out.push_back(header.str());
    for (WORD i = 0; i < h.itemCount; ++i) {
        const DialogControl c = reader.ReadControl();
        std::ostringstream control;
        control << c.helpId << ' ' << c.style << ' ' << c.extendedStyle << ' ' << c.x << ' ' << c.y
                << ' ' << c.width << ' ' << c.height << ' ' << c.id << ' ' << c.idHigh << ' '
                << Shown(c.className) << ' ' << c.classOrdinal << ' ' << Shown(c.title) << ' '
                << c.titleOrdinal << ' ' << c.creationData.size();
        out.push_back(control.str());
    }
    return out;
}

inline std::vector<std::string> Titles(const std::vector<std::uint8_t>& bytes) {
    CDialogTemplateReader reader;
    const DialogHeader h = reader.ReadHeader(bytes);
    std::vector<std::string> out{Shown(h.title)};
    for (WORD i = 0; i < h.itemCount; ++i)
        out.push_back(Shown(reader.ReadControl().title));
    return out;
}

// Walks a block by its lengths, as the system's version calls do: every
// node's children fill its length exactly. The string values by key.
struct LengthWalk {
    explicit LengthWalk(const std::vector<std::uint8_t>& bytes) : b(bytes) {}

    WORD Word(std::size_t at) const { return static_cast<WORD>(b.at(at) | b.at(at + 1) << 8); }
    static std::size_t Aligned(std::size_t at) { return (at + 3) & ~std::size_t{3}; }

    // The node at at, with its children; false where a length does not fit.
    bool Node(std::size_t at, std::size_t end, int depth) {
        const std::size_t length = Word(at);
        const std::size_t valueLength = Word(at + 2);
        const bool isText = Word(at + 4) == 1;
        if (length < 6 || at + length > end)
            return false;
        std::size_t p = at + 6;
        std::u16string key;
        for (WORD unit; (unit = Word(p)) != 0; p += 2)
            key += static_cast<char16_t>(unit);
        p = Aligned(p + 2);
        std::u16string value;
        if (depth == 3) {
            for (std::size_t i = 0; isText && i + 1 < valueLength; ++i)
                value += static_cast<char16_t>(Word(p + 2 * i));
            values[Narrow(key)] = Narrow(value);
        }
        p = Aligned(p + valueLength * (isText ? 2 : 1));
        while (p < at + length) {
            if (!Node(p, at + length, depth + 1))
                return false;
            p = Aligned(p + Word(p));
        }
        return true;
    }

    const std::vector<std::uint8_t>& b;
    std::map<std::string, std::string> values;
};

inline std::map<std::string, std::string> WalkedValues(const std::vector<std::uint8_t>& bytes) {
    LengthWalk walk(bytes);
    EXPECT_TRUE(walk.Node(0, bytes.size(), 0)) << "lengths out of step";
    EXPECT_EQ(walk.Word(0), bytes.size()) << "root length";
    return walk.values;
}

} // namespace tervane::test
