#include "model/menu_resource.h"

#include <algorithm>

#include "frame/conversion_state.h"
#include "frame/diagnostics/exceptions.h"
#include "label/grammars/label_parser.h"
#include "label/pieces/tag_predicates.h"
#include "model/menu_checks.h"

namespace tervane {

namespace {

constexpr std::size_t kPlainItemsStart = 4;
constexpr std::size_t kExtendedItemsStart = 8;

bool HasTagText(const CLabelPiece& piece, std::u16string_view text) {
    const TagDescriptor* tag = TagOf(piece);
    return tag != nullptr && tag->tagText == text;
}

bool Counts(const CLabelPiece& piece) {
    return TagOf(piece) != nullptr || TextOf(piece) != nullptr;
}

// The end of the group and the root of the next menu end a menu's pieces.
bool StopsMenu(const CLabelPiece& piece) {
    return IsClose(piece, u"menus") || IsOpen(piece, u"menu id");
}

// Depth first, as the records stood in the flat stream, each record's new
// pieces checked before they replace its old ones. One level of the menu
// has one table of hotkeys. False once other runs out.
bool MergeLevel(std::vector<MenuItemRecord>& level, std::vector<MenuItemRecord>& flat,
                std::size_t& next, CMenuResource& menu) {
    HotkeyTable hotkeys;
    bool more = true;
    for (MenuItemRecord& record : level) {
        if (next >= flat.size()) {
            more = false;
            break;
        }
        CLabelPieceList pieces = std::move(flat[next++].pieces);
        if (g_writerMode == 1)
            RemoveSurplusHotkeys(pieces);
        NormaliseMenuPieces(pieces);
        CheckMenuHotkey(pieces, hotkeys, menu.menuId);
        CheckMenuShortcut(pieces, menu.shortcuts);
        record.pieces = std::move(pieces);
        if (!MergeLevel(record.children, flat, next, menu)) {
            more = false;
            break;
        }
    }
    ReportDuplicateHotkeys(hotkeys, "menu", menu.menuId);
    return more;
}

} // namespace

CMenuResource::CMenuResource() = default;
CMenuResource::~CMenuResource() = default;

int CMenuResource::Accept(CResourceVisitor& visitor) {
    visitor.VisitMenu(this);
    return 0;
}

void CMenuResource::ExtractPieces(CPieceStream& stream) {
    const std::optional<std::size_t> after = AfterGroupOpen(stream, u"menus");
    if (!after)
        return;
    const std::size_t start = *after;
    std::size_t at = start;

    if (at < stream.size() && IsOpen(*stream[at], u"menu id")) {
        MenuItemRecord root;
        menuId = GetIdAttribute(*stream[at]);
        root.pieces.push_back(std::move(stream[at++]));
        items.push_back(std::move(root));
    }
    while (at < stream.size() && !StopsMenu(*stream[at])) {
        if (!Counts(*stream[at])) {
            ++at;
            continue;
        }
        const TagDescriptor* tag = TagOf(*stream[at]);
        const bool item = tag != nullptr && IsOpen(*tag, u"item");
        const bool mark = tag != nullptr && !tag->startTag && !tag->endTag;
        MenuItemRecord record;
        record.pieces.push_back(std::move(stream[at++]));
        if (item) {
            while (at < stream.size() && !StopsMenu(*stream[at])) {
                if (!Counts(*stream[at])) {
                    ++at;
                    continue;
                }
                const bool closes = HasTagText(*stream[at], u"</item>");
                record.pieces.push_back(std::move(stream[at++]));
                if (closes)
                    break;
            }
        }
        // A record holds one </menu> at most; a second in a row is a record of its own.
        if ((item || mark) && at < stream.size() &&
            (HasTagText(*stream[at], u"</menu>") || HasTagText(*stream[at], u"<menu>")))
            record.pieces.push_back(std::move(stream[at++]));
        items.push_back(std::move(record));
    }
    stream.erase(stream.begin() + static_cast<std::ptrdiff_t>(start),
                 stream.begin() + static_cast<std::ptrdiff_t>(at));
}

void CMenuResource::ReleaseContent() {
    std::vector<MenuItemRecord>().swap(items);
    shortcuts.clear();
    parser.reset();
}

void CMenuResource::MergePieces(CResource& other) {
    auto& source = static_cast<CMenuResource&>(other);
    std::size_t next = 0;
    MergeLevel(items, source.items, next, *this);
    ReportDuplicateShortcuts(shortcuts, "menu", menuId);
}

CResource* CMenuCommand::Execute(Bytes data, CResource* resource) {
    auto* menu = static_cast<CMenuResource*>(resource);
    try {
        g_menuSize = menu->size;
        Bytes bytes = data.first(std::min<std::size_t>(data.size(), menu->size));
        std::size_t offset = menu->IsExtended() ? kExtendedItemsStart : kPlainItemsStart;
        int level = 0;
        CLabelParser* parser = menu->parser ? menu->parser.get() : &SharedLabelParser();
        menu->menuId = menu->identifierText;

        MenuItemRecord root;
        root.parser = parser;
        root.pieces.push_back(MakeMenuRootTag(menu->identifierText));
        menu->items.push_back(std::move(root));
        while (offset < g_menuSize) {
            MenuItemRecord record;
            record.parser = parser;
            ReadItem(record, bytes, offset, level, menu->IsExtended());
            menu->items.push_back(std::move(record));
        }
    } catch (...) {
        throw CParserException(kCorruptedDocumentMessage);
    }
    return menu;
}

} // namespace tervane
