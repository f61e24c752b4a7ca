#pragma once
// Dialog init data: the strings that fill a dialog's combo and list boxes.
#include "frame/resource.h"

namespace tervane {

class CDlgInitResource : public CResource {
public:
    int Accept(CResourceVisitor& visitor) override;
    std::unique_ptr<CTagLabelPiece> GetOpenTag() const override {
        return GroupTag("dlginits::", true);
    }
    std::unique_ptr<CTagLabelPiece> GetCloseTag() const override {
        return GroupTag("dlginits::", false);
    }
    // Its strings stand in the dialogs they fill, never in a group of their own.
    void ExtractPieces(CPieceStream&) override {}
};

// Reads the records into the process-wide table under the resource's
// identifier; the resource itself stays as it was.
class CDlgInitCommand : public CResourceCommand {
public:
    CResource* Execute(Bytes data, CResource* resource) override;
};

} // namespace tervane
