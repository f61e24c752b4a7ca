#include "model/menu_resource.h"
#include "stream/output_visitor.h"

namespace tervane {

namespace {

// Found, and not at the very start of the text.
bool ContainsAfterStart(std::u16string_view text, std::u16string_view word) {
    const std::size_t at = text.find(word);
    return at != std::u16string_view::npos && at > 0;
}

} // namespace

void COutputVisitor::SendMenuTag(const TagDescriptor& tag, bool root) {
    const std::u16string_view text = tag.tagText;
    const bool closesMenu = text == u"</menu>";
    if (closesMenu)
        --level_;
    if (text == u"<menu>" || closesMenu || text == u"<item>" ||
        ContainsAfterStart(text, u"item id") || text == u"<separator/>") {
        if (level_ > 0)
            SendIndent(level_);
    }
    // The menu's own tag stands one tab in, whatever the level.
    if (root && text.find(u"menu id") != std::u16string_view::npos)
        SendIndent(1);
    SendTag(tag);
    if (ContainsAfterStart(text, u"menu") && !closesMenu)
        ++level_;
    if (text == u"</item>" || ContainsAfterStart(text, u"menu") ||
        ContainsAfterStart(text, u"separator"))
        SendNewLine();
}

void COutputVisitor::WalkMenuRecord(const MenuItemRecord& record, bool root) {
    for (const auto& piece : record.pieces) {
        if (const auto* text = TextOf(*piece))
            SendText(text->text);
        else if (const TagDescriptor* tag = TagOf(*piece))
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
