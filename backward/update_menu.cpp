// A merged menu written anew, plain or extended as its source was.
#include "backward/update_visitor.h"
#include "frame/diagnostics/trace.h"
#include "model/menu_resource.h"
#include "model/text_checks.h"

namespace tervane {

namespace {

constexpr WORD kPopup = 0x10;             // MF_POPUP
constexpr DWORD kNoType = 0xFFFFFFFF;     // the root and the closing records
constexpr WORD kNoFlags = 0xFFFF;         // the same in the plain form
constexpr WORD kExtendedHasHelpId = 0x01; // bResInfo: a pop-up, with a help id

} // namespace

void CUpdateVisitor::WriteMenuText(CResourceBuffer& buffer, const MenuItemRecord& record,
                                   bool topLevel) {
    std::u16string text = GetTranslatedText(record.pieces, false);
    VerifyTranslatedTextLen(text, kMenuTextLimit, true, topLevel);
    buffer.WriteText(text);
}

void CUpdateVisitor::WriteTrailingWords(CResourceBuffer& buffer, const MenuItemRecord& record) {
    for (WORD i = 0; i < record.trailingWords; ++i)
        buffer.WriteWord(0);
}

void CUpdateVisitor::WriteExtendedItems(CResourceBuffer& buffer,
                                        const std::vector<MenuItemRecord>& records, bool topLevel) {
    for (const MenuItemRecord& record : records) {
        if (record.type == kNoType)
            continue;
        buffer.WriteDword(record.type);
        buffer.WriteDword(record.state);
        buffer.WriteDword(record.itemId);
        buffer.WriteWord(record.resInfo);
        WriteMenuText(buffer, record, topLevel);
        if (record.resInfo & kExtendedHasHelpId) {
            // The help id stands on a 4-byte boundary, where the reader took it.
            buffer.Align();
            buffer.WriteDword(record.helpId);
        }
        buffer.Align();
        WriteExtendedItems(buffer, record.children, false);
        WriteTrailingWords(buffer, record);
    }
}

void CUpdateVisitor::WritePlainItems(CResourceBuffer& buffer,
                                     const std::vector<MenuItemRecord>& records, bool topLevel) {
    for (const MenuItemRecord& record : records) {
        if (record.flags != kNoFlags) {
            buffer.WriteWord(record.flags);
            // A pop-up has no id in the template; an item may have 0xFFFF.
            if ((record.flags & kPopup) == 0)
                buffer.WriteWord(record.id);
            WriteMenuText(buffer, record, topLevel);
        }
        WritePlainItems(buffer, record.children, false);
        WriteTrailingWords(buffer, record);
    }
}

int CUpdateVisitor::VisitMenu(CMenuResource* resource) {
    ClearContext();
    CResourceBuffer buffer;
    buffer.SetContext("menu id = " + resource->identifierText);
    const bool extended = resource->IsExtended();
    if (!extended && !resource->IsPlain())
        return 0;
    if (resource->items.empty())
        return 0;
    const MenuItemRecord& root = resource->items.front();
    if (extended) {
        Trace("\nReady to construct menu buffer............\n");
        buffer.WriteWord(resource->extendedVersion);
        buffer.WriteWord(resource->extendedOffset);
        buffer.WriteDword(resource->extendedHelpId);
        GetUnitNumber(root.pieces);
        WriteExtendedItems(buffer, resource->items, true);
    } else {
        buffer.WriteWord(resource->plainVersion);
        buffer.WriteWord(resource->plainHeaderSize);
        const std::string id = std::to_string(GetUnitNumber(root.pieces));
        Trace("Constructing menu buffer id = " + id + "............\n");
        WritePlainItems(buffer, resource->items, true);
        Trace("Constructed menu buffer id = " + id + ".\n");
        Trace("Deleting source menu id = " + id + "..........\n");
        Trace("Updating translated menu id = " + id + "..........\n");
    }
    UpdateResourceData(kMenuType, resource->identifierText, buffer.data(), buffer.used(),
                       resource->targetLanguage);
    return 0;
}

} // namespace tervane
