#pragma once
// A menu template, plain or extended.
#include "frame/resource.h"

namespace tervane {

class CMenuResource : public CResource {
public:
    int Accept(CResourceVisitor& visitor) override;
    std::unique_ptr<CTagLabelPiece> GetOpenTag() const override { return GroupTag("menus", true); }
    std::unique_ptr<CTagLabelPiece> GetCloseTag() const override {
        return GroupTag("menus", false);
    }
    // Nothing of this kind is read yet, so there is nothing to take.
    void ExtractPieces(CLabelPieceList&) override {}

    // Read from the template's header before any command runs.
    WORD version = 0;
    WORD headerSize = 0; // plain templates
    WORD offset = 0;     // extended templates
    DWORD helpId = 0;    // extended templates
};

// Reads nothing yet: the resource is kept, and gives nothing to the document.
class CMenuCommand : public CResourceCommand {
public:
    CResource* Execute(Bytes, CResource* resource) override { return resource; }
};

} // namespace tervane
