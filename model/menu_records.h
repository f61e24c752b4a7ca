#pragma once
// The item tree of a menu template, plain or extended, and its readers. A
// record's pieces hold not only its item but also the <menu> or </menu> that
// follows it in the flat stream of tags.
#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "label/pieces/label_piece.h"
#include "platform/byte_reader.h"
#include "platform/win32/types.h"

namespace tervane {

class CLabelParser;

// A new record stands for no template item: the root and the closing records
// keep these values, and the rebuilding passes over them.
struct MenuItemRecord {
    CLabelPieceList pieces;
    // The items of its pop-up, in order, with the closing record last.
    std::vector<MenuItemRecord> children;
    DWORD type = 0xFFFFFFFF;
    DWORD state = 0xFFFFFFFF;
    DWORD itemId = 0xFFFFFFFF;
    WORD resInfo = 0xFFFF;
    std::u16string extendedText;
    DWORD helpId = 0xFFFFFFFF;
    WORD flags = 0xFFFF;
    WORD id = 0xFFFF; // a plain pop-up has none in the template
    std::u16string text;
    CLabelParser* parser = nullptr; // the resource's, shared by all its records
    WORD trailingWords = 0;         // zero words counted behind this item at the menu's end
};

// The size of the menu being read; the readers compare their offset with it.
extern thread_local DWORD g_menuSize;

// Deeper pop-ups are taken for a corrupted template.
inline constexpr int kMaxMenuDepth = 64;

// Reads one item at offset with its children, and moves offset behind them.
// level counts the pop-ups opened and not yet closed by a last item; depth
// guards the recursion. A read outside data throws CParserException.
void ReadItem(MenuItemRecord& record, Bytes data, std::size_t& offset, int& level, bool isExtended,
              int depth = 0);
void ReadPlainItem(MenuItemRecord& record, Bytes data, std::size_t& offset, int& level,
                   int depth = 0);
void ReadExtendedItem(MenuItemRecord& record, Bytes data, std::size_t& offset, int& level,
                      int depth = 0);

// The tags of a menu that stand outside any item.
std::unique_ptr<CTagLabelPiece> MakeMenuRootTag(const std::string& identifierText);
std::unique_ptr<CTagLabelPiece> MakeMenuCloseTag();
// "<item id="N">", or "<item>" for 0xFFFF and for what is 0 or less as a signed number.
std::unique_ptr<CTagLabelPiece> MakeItemTag(DWORD id);

} // namespace tervane
