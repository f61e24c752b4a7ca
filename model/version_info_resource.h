#pragma once
// A version information block.
#include "frame/resource.h"

namespace tervane {

class CVersionInfoResource : public CResource {
public:
    int Accept(CResourceVisitor& visitor) override;
    std::unique_ptr<CTagLabelPiece> GetOpenTag() const override {
        return GroupTag("versioninfo", true);
    }
    std::unique_ptr<CTagLabelPiece> GetCloseTag() const override {
        return GroupTag("versioninfo", false);
    }
    // Nothing of this kind is read yet, so there is nothing to take.
    void ExtractPieces(CLabelPieceList&) override {}
};

// Reads nothing yet: the resource is kept, and gives nothing to the document.
class CVersionInfoCommand : public CResourceCommand {
public:
    CResource* Execute(Bytes, CResource* resource) override { return resource; }
};

} // namespace tervane
