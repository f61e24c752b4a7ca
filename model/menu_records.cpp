#include "model/menu_records.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <limits>

#include "frame/resource.h"
#include "model/menu_text.h"
#include "model/read_failure.h"

namespace tervane {

thread_local DWORD g_menuSize = 0;

namespace {

constexpr WORD kPopup = 0x10;               // MF_POPUP
constexpr WORD kEnd = 0x80;                 // MF_END
constexpr WORD kExtendedPopup = 0x01;       // bResInfo: a pop-up follows
constexpr WORD kExtendedEnd = 0x80;         // bResInfo: last item of its menu
constexpr DWORD kExtendedSeparator = 0x800; // MFT_SEPARATOR

ByteReader ReaderAt(Bytes data, std::size_t offset, const char* field) {
    ByteReader reader(data);
    if (!reader.Seek(offset))
        ThrowCorrupted(offset, field);
    return reader;
}

WORD Read16(ByteReader& reader, const char* field) {
    auto value = reader.ReadU16LE();
    if (!value)
        ThrowCorrupted(reader.Offset(), field);
    return *value;
}

DWORD Read32(ByteReader& reader, const char* field) {
    auto value = reader.ReadU32LE();
    if (!value)
        ThrowCorrupted(reader.Offset(), field);
    return *value;
}

// UTF-16 units up to the zero word, which is read too; a failure names the
// text's start.
std::u16string ReadText(ByteReader& reader, const char* field) {
    const std::size_t start = reader.Offset();
    std::u16string text;
    for (;;) {
        auto unit = reader.ReadU16LE();
        if (!unit)
            ThrowCorrupted(start, field);
        if (*unit == 0)
            return text;
        text += static_cast<char16_t>(*unit);
    }
}

constexpr WideText kItemName = WideText::Constant(u"item");
constexpr WideText kMenuName = WideText::Constant(u"menu");

constexpr ConstantTagText kItemOpen = ConstantTag(u"<item>");
constexpr ConstantTagText kItemClose = ConstantTag(u"</item>");
constexpr ConstantTagText kMenuOpen = ConstantTag(u"<menu>");
constexpr ConstantTagText kMenuClose = ConstantTag(u"</menu>");
constexpr ConstantTagText kSeparator = ConstantTag(u"<separator/>");
// An item tag with its id: the digits and quotes behind add no word.
constexpr ConstantTagText kItemIdStart = ConstantTag(u"<item id=\"");

std::unique_ptr<CTagLabelPiece> ItemClose() {
    return MakeStructuralTag(kItemName, kItemClose, 1, 0);
}

std::unique_ptr<CTagLabelPiece> PopupOpen() {
    return MakeStructuralTag(kMenuName, kMenuOpen, 0, 1);
}

std::unique_ptr<CTagLabelPiece> Separator() {
    return MakeStructuralTag(WideText::Constant(u"separator"), kSeparator, 0, 0);
}

// Closes the menu that the last item holding it belongs to.
MenuItemRecord ClosingRecord() {
    MenuItemRecord record;
    record.pieces.push_back(MakeMenuCloseTag());
    return record;
}

// The zero words behind the last top-level pop-up, up to the menu's end.
void CountTrailingWords(MenuItemRecord& record, std::size_t& offset, int level) {
    while (offset < g_menuSize && level == 0) {
        if (record.trailingWords == std::numeric_limits<WORD>::max())
            ThrowCorrupted(offset, "trailing words");
        ++record.trailingWords;
        offset += 2;
    }
}

// Children up to and with the first one that ends its menu. The template has
// no count: a pop-up whose children never end is stopped at the menu's end.
template <typename EndsMenu>
void ReadChildren(MenuItemRecord& record, Bytes data, std::size_t& offset, int& level,
                  bool isExtended, int depth, EndsMenu endsMenu) {
    for (;;) {
        if (offset >= g_menuSize)
            ThrowCorrupted(offset, "item");
        MenuItemRecord child;
        child.parser = record.parser;
        ReadItem(child, data, offset, level, isExtended, depth + 1);
        const bool last = endsMenu(child);
        record.children.push_back(std::move(child));
        if (last)
            return;
    }
}

} // namespace

std::unique_ptr<CTagLabelPiece> MakeMenuRootTag(const std::string& identifierText) {
    WideText text = WidenTagText("<menu id=\"" + identifierText + "\">");
    const std::uint32_t words = PackTagWords(FindTagWords(text));
    return MakeStructuralTag(kMenuName, std::move(text), 0, 1, words);
}

std::unique_ptr<CTagLabelPiece> MakeMenuCloseTag() {
    return MakeStructuralTag(kMenuName, kMenuClose, 1, 0);
}

std::unique_ptr<CTagLabelPiece> MakeItemTag(DWORD id) {
    const auto value = static_cast<std::int32_t>(id);
    if (id == 0xFFFF || value <= 0)
        return MakeStructuralTag(kItemName, kItemOpen, 0, 1);
    // Written on the stack, without a round through narrow text.
    const std::u16string_view start = kItemIdStart.text;
    char digits[16];
    char* end = std::to_chars(digits, digits + sizeof digits, value).ptr;
    char16_t text[start.size() + sizeof digits + 2];
    char16_t* to = std::copy(start.begin(), start.end(), text);
    to = std::copy(digits, end, to);
    *to++ = u'"';
    *to++ = u'>';
    return MakeStructuralTag(
        kItemName, WideText(std::u16string_view(text, static_cast<std::size_t>(to - text))), 0, 1,
        kItemIdStart.words);
}

void ReadItem(MenuItemRecord& record, Bytes data, std::size_t& offset, int& level, bool isExtended,
              int depth) {
    if (depth > kMaxMenuDepth)
        ThrowCorrupted(offset, "popup depth");
    if (isExtended)
        ReadExtendedItem(record, data, offset, level, depth);
    else
        ReadPlainItem(record, data, offset, level, depth);
}

void ReadPlainItem(MenuItemRecord& record, Bytes data, std::size_t& offset, int& level, int depth) {
    ByteReader reader = ReaderAt(data, offset, "item");
    record.flags = Read16(reader, "mtOption");
    const bool popup = (record.flags & kPopup) != 0;
    const bool last = (record.flags & kEnd) != 0;

    if (popup) {
        ++level;
        record.id = 0xFFFF;
        record.text = ReadText(reader, "mtString");
        offset = reader.Offset();
        record.pieces.push_back(MakeItemTag(record.id));
        AnalyseMenuText(record, record.text);
        record.pieces.push_back(ItemClose());
        record.pieces.push_back(PopupOpen());
        ReadChildren(record, data, offset, level, false, depth,
                     [](const MenuItemRecord& child) { return (child.flags & kEnd) != 0; });
        if (last) {
            record.children.push_back(ClosingRecord());
            CountTrailingWords(record, offset, level);
        }
        return;
    }

    record.id = Read16(reader, "mtID");
    record.text = ReadText(reader, "mtString");
    offset = reader.Offset();
    // A plain separator is told by its empty text, whatever its flags say.
    if (record.text.empty()) {
        record.pieces.push_back(Separator());
        if (last) {
            record.pieces.push_back(MakeMenuCloseTag());
            --level;
        }
        return;
    }
    record.pieces.push_back(MakeItemTag(record.id));
    AnalyseMenuText(record, record.text);
    record.pieces.push_back(ItemClose());
    if (last) {
        if (record.id != 0 || offset >= g_menuSize)
            record.pieces.push_back(MakeMenuCloseTag());
        --level;
    }
}

void ReadExtendedItem(MenuItemRecord& record, Bytes data, std::size_t& offset, int& level,
                      int depth) {
    ByteReader reader = ReaderAt(data, offset, "item");
    record.type = Read32(reader, "dwType");
    record.state = Read32(reader, "dwState");
    record.itemId = Read32(reader, "menuId");
    record.resInfo = Read16(reader, "bResInfo");
    record.extendedText = ReadText(reader, "szText");
    // Items, and the help identifier of a pop-up, stand on 4-byte boundaries;
    // the padding of the very last item may lie outside the data.
    offset = (reader.Offset() + 3) & ~std::size_t{3};
    const bool popup = (record.resInfo & kExtendedPopup) != 0;
    if (popup) {
        ByteReader help = ReaderAt(data, offset, "dwHelpId");
        record.helpId = Read32(help, "dwHelpId");
        offset = help.Offset();
    }

    if ((record.type & kExtendedSeparator) != 0) {
        record.pieces.push_back(Separator());
    } else {
        record.pieces.push_back(MakeItemTag(record.itemId));
        AnalyseMenuText(record, record.extendedText);
        record.pieces.push_back(ItemClose());
    }

    if (popup) {
        ++level;
        record.pieces.push_back(PopupOpen());
        ReadChildren(record, data, offset, level, true, depth, [](const MenuItemRecord& child) {
            return (child.resInfo & kExtendedEnd) != 0;
        });
        if ((record.resInfo & kExtendedEnd) != 0) {
            record.children.push_back(ClosingRecord());
            CountTrailingWords(record, offset, level);
        }
    } else if ((record.resInfo & kExtendedEnd) != 0) {
        --level;
        record.pieces.push_back(MakeMenuCloseTag());
    }
}

} // namespace tervane
