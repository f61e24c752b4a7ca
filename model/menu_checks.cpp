#include "model/menu_checks.h"

#include "frame/conversion_state.h"
#include "label/pieces/tag_predicates.h"
#include "model/text_util.h"

namespace tervane {

namespace {

bool Contains(std::u16string_view text, std::u16string_view word) {
    return text.find(word) != std::u16string_view::npos;
}

bool IsOpening(const TagDescriptor& tag, std::u16string_view word) {
    return tag.startTag && !tag.endTag && Contains(tag.tagText, word);
}

bool IsClosing(const TagDescriptor& tag, std::u16string_view word) {
    return tag.endTag && !tag.startTag && Contains(tag.tagText, word);
}

std::string ItemDescription(const std::string& itemId) {
    return ControlDescription("item", itemId);
}

} // namespace

void RemoveSurplusHotkeys(CLabelPieceList& pieces) {
    bool counting = false;
    int count = 0;
    for (std::size_t at = 0; at < pieces.size();) {
        const TagDescriptor* tag = TagOf(*pieces[at]);
        if (tag != nullptr) {
            if (IsOpening(*tag, u"item")) {
                counting = true;
                count = 0;
            } else if (IsClosing(*tag, u"</item>") || IsOpening(*tag, u"<shortcut>")) {
                counting = false;
            } else if (counting && tag->inlineTag && tag->tagText == u"&" && ++count >= 2) {
                pieces.erase(pieces.begin() + static_cast<std::ptrdiff_t>(at));
                continue;
            }
        }
        ++at;
    }
}

void NormaliseMenuPieces(CLabelPieceList& pieces) {
    for (auto& piece : pieces) {
        if (const CTextLabelPiece* text = TextOf(*piece)) {
            if (text->text.find(u'&') == std::u16string::npos)
                continue;
            std::u16string doubled = text->text.str();
            ReplaceAll(doubled, u"&", u"&&");
            auto replaced = MakeText(doubled);
            replaced->inSegment = text->inSegment;
            replaced->range = text->range;
            piece = std::move(replaced);
            continue;
        }
        const CTagLabelPiece* tag = piece->AsTag();
        if (tag == nullptr || !tag->tag.inlineTag ||
            tag->tag.tagText.find(u'\\') == std::u16string::npos)
            continue;
        std::u16string t = tag->tag.tagText.str();
        UnescapeControls(t);
        TagDescriptor changed = tag->tag;
        changed.tagText = WideText(t);
        auto replaced = std::make_unique<CTagLabelPiece>(std::move(changed));
        replaced->range = tag->range;
        piece = std::move(replaced);
    }
}

void CheckMenuHotkey(const CLabelPieceList& pieces, HotkeyTable& level, std::string& menuId) {
    bool mark = false;
    bool inShortcut = false;
    bool shortcutSeen = false;
    std::string itemId;
    for (const auto& piece : pieces) {
        if (const CTextLabelPiece* text = TextOf(*piece)) {
            if (mark && !inShortcut) {
                if (!text->text.empty())
                    AddHotkey(level, text->text[0], ItemDescription(itemId));
                mark = false;
            }
            continue;
        }
        const TagDescriptor* tag = TagOf(*piece);
        if (tag == nullptr)
            continue;
        if (tag->inlineTag) {
            if (Contains(tag->tagText, u"&"))
                mark = true;
        } else if (IsClosing(*tag, u"item")) {
            if (mark && !shortcutSeen)
                AlertHotkeyAtEnd("menu", menuId, ItemDescription(itemId));
        } else if (IsOpening(*tag, u"menu id")) {
            menuId = GetIdAttribute(*tag);
        } else if (IsOpening(*tag, u"item")) {
            itemId = GetIdAttribute(*tag);
            inShortcut = false;
        } else if (IsOpening(*tag, u"shortcut")) {
            if (mark)
                AlertHotkeyAtEnd("menu", menuId, ItemDescription(itemId));
            inShortcut = true;
            shortcutSeen = true;
        }
    }
}

void CheckMenuShortcut(const CLabelPieceList& pieces, ShortcutTable& shortcuts) {
    std::u16string current;
    bool inShortcut = false;
    bool comma = false;
    std::string itemId;
    for (const auto& piece : pieces) {
        if (const CTextLabelPiece* text = TextOf(*piece)) {
            if (!inShortcut)
                continue;
            if (comma) {
                AddShortcut(shortcuts, current, ItemDescription(itemId));
                current.clear();
                comma = false;
            }
            current += text->text.view();
            continue;
        }
        const TagDescriptor* tag = TagOf(*piece);
        if (tag == nullptr)
            continue;
        if (tag->inlineTag) {
            if (Contains(tag->tagText, u","))
                comma = true;
            else if (inShortcut)
                current += tag->tagText.view();
        } else if (IsOpening(*tag, u"item")) {
            itemId = GetIdAttribute(*tag);
            comma = false;
        } else if (IsOpening(*tag, u"shortcut")) {
            inShortcut = true;
        }
    }
    if (!current.empty())
        AddShortcut(shortcuts, current, ItemDescription(itemId));
}

} // namespace tervane
