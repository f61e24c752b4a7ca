#pragma once
// A menu template, plain or extended, as a tree of item records whose pieces
// give the menu's part of the document.
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "frame/resource.h"
#include "model/menu_records.h"

namespace tervane {

class CMenuResource : public CResource {
public:
    CMenuResource();
    ~CMenuResource() override;

    int Accept(CResourceVisitor& visitor) override;
    std::unique_ptr<CTagLabelPiece> GetOpenTag() const override { return GroupTag("menus", true); }
    std::unique_ptr<CTagLabelPiece> GetCloseTag() const override {
        return GroupTag("menus", false);
    }
    // Takes one record for each record of a read menu, in depth-first order,
    // up to the end of the group or the next menu's root tag, which stay.
    void ExtractPieces(CPieceStream& stream) override;
    // Gives the records of this tree, depth first, the pieces of other's flat
    // list, for as many records as other holds.
    void MergePieces(CResource& other) override;
    void ReleaseContent() override;

    bool IsExtended() const { return extendedVersion == 1; }
    bool IsPlain() const { return plainVersion == 0; }

    // The root, then the items of the top level.
    std::vector<MenuItemRecord> items;
    // Read from the template's header before any command runs.
    WORD plainVersion = 0;
    WORD plainHeaderSize = 0;
    WORD extendedVersion = 0;
    WORD extendedOffset = 0;
    DWORD extendedHelpId = 0;
    // Shortcuts met so far in this menu, for the duplicate check.
    std::map<std::u16string, std::u16string> shortcuts;
    // The id value of the menu's root tag.
    std::string menuId;
    // The label parser that all records of this menu share; without one, the
    // reading uses the thread's.
    std::unique_ptr<CLabelParser> parser;
};

class CMenuCommand : public CResourceCommand {
public:
    CResource* Execute(Bytes data, CResource* resource) override;
};

} // namespace tervane
