#pragma once
// Resource bytes written little-endian; pieces spelt as [texts], {inline tags} and other tags.
#include <cstdint>
#include <string>
#include <vector>

#include "label/pieces/label_piece.h"
#include "platform/locale/code_pages.h"

namespace tervane::test {

struct Bytes {
    Bytes& U8(std::uint8_t v) {
        bytes.push_back(v);
        return *this;
    }
    Bytes& U16(std::uint16_t v) {
        return U8(static_cast<std::uint8_t>(v)).U8(static_cast<std::uint8_t>(v >> 8));
    }
    Bytes& U32(std::uint32_t v) {
        return U16(static_cast<std::uint16_t>(v)).U16(static_cast<std::uint16_t>(v >> 16));
    }
    Bytes& Text(std::u16string_view text) {
        for (char16_t c : text)
            U16(c);
        return U16(0);
    }
    Bytes& Align() {
        while (bytes.size() % 4)
            U8(0);
        return *this;
    }
    std::vector<std::uint8_t> bytes;
};

template <typename Pieces> std::string Spell(const Pieces& pieces) {
    std::u16string out;
    for (const auto& piece : pieces) {
        if (const auto* text = TextOf(*piece))
            out += u"[" + text->text.str() + u"]";
        else if (const auto* tag = TagOf(*piece))
            out += tag->inlineTag ? u"{" + tag->tagText.str() + u"}" : tag->tagText.str();
    }
    return Narrow(out);
}

// Every tag piece answers for the words of its text as a search of it does,
// whether it kept them when it was built or not.
inline void ExpectKeptWords(const CLabelPieceList& pieces) {
    for (const auto& piece : pieces) {
        const CTagLabelPiece* tag = piece->AsTag();
        if (tag == nullptr)
            continue;
        const TagWords kept = tag->Words();
        const TagWords searched = FindTagWords(tag->tag.tagText);
        const std::string shown = Narrow(tag->tag.tagText);
        EXPECT_EQ(kept.found, searched.found) << shown;
        EXPECT_EQ(kept.afterSlash, searched.afterSlash) << shown;
        EXPECT_EQ(kept.found & ~kept.atStart, searched.found & ~searched.atStart) << shown;
    }
}

} // namespace tervane::test
