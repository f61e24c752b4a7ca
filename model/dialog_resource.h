#pragma once
// A dialog template.
#include "frame/resource.h"

namespace tervane {

class CDialogResource : public CResource {
public:
    int Accept(CResourceVisitor& visitor) override;
    std::unique_ptr<CTagLabelPiece> GetOpenTag() const override {
        return GroupTag("dialogs", true);
    }
    std::unique_ptr<CTagLabelPiece> GetCloseTag() const override {
        return GroupTag("dialogs", false);
    }
    // Nothing of this kind is read yet, so there is nothing to take.
    void ExtractPieces(CLabelPieceList&) override {}
};

// Reads nothing yet: the resource is kept, and gives nothing to the document.
class CDialogCommand : public CResourceCommand {
public:
    CResource* Execute(Bytes, CResource* resource) override { return resource; }
};

} // namespace tervane
