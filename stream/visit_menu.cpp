#include <cstring>

#include "label/pieces/tag_words.h"
#include "model/menu_resource.h"
#include "stream/output_visitor.h"

namespace tervane {

namespace {

// The tag is the word, told by its size before its units.
template <std::size_t N> bool Is(std::u16string_view text, const char16_t (&word)[N]) {
    return text.size() == N - 1 && std::memcmp(text.data(), word, (N - 1) * sizeof(char16_t)) == 0;
}

} // namespace

// "Contains after the start" is a search that ignores a match at the
// text's first character.
void COutputVisitor::SendMenuTag(const CTagLabelPiece& piece, bool root) {
    const TagDescriptor& tag = piece.tag;
    const std::u16string_view text = tag.tagText;
    const TagWords words = piece.Words();
    const bool closesMenu = Is(text, u"</menu>");
    if (closesMenu)
        --level_;
    if (Is(text, u"<menu>") || closesMenu || Is(text, u"<item>") ||
        words.FirstAfterStart(kWordItemId) || Is(text, u"<separator/>")) {
        if (level_ > 0)
            SendIndent(level_);
    }
    // The menu's own tag stands one tab in, whatever the level.
    if (root && words.Any(kWordMenuId))
        SendIndent(1);
    SendTag(tag);
    const bool opensMenu = words.FirstAfterStart(kWordMenu);
    if (opensMenu && !closesMenu)
        ++level_;
    if (Is(text, u"</item>") || opensMenu || words.FirstAfterStart(kWordSeparator))
        SendNewLine();
}

void COutputVisitor::WalkMenuRecord(const MenuItemRecord& record, bool root) {
    for (const auto& piece : record.pieces) {
        if (const auto* text = TextOf(*piece))
            SendText(text->text);
        else if (const CTagLabelPiece* tag = piece->AsTag())
            SendMenuTag(*tag, root);
    }
    // The reader has bounded the tree's depth.
    for (const MenuItemRecord& child : record.children)
        WalkMenuRecord(child, false);
}

int COutputVisitor::VisitMenu(CMenuResource* resource) {
    OpenFrame(kMenusGroup, !resource->items.empty());
    level_ = 1;
    for (const MenuItemRecord& record : resource->items)
        WalkMenuRecord(record, true);
    CloseFrameIfLast(kMenusGroup);
    return 0;
}

} // namespace tervane
