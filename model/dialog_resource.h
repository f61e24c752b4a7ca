#pragma once
// A dialog template resource: one CDialogItem once read.
#include <memory>
#include <vector>

#include "frame/resource.h"
#include "model/dialog_item.h"

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
    // Takes the pieces behind the group's tag up to the first end tag that
    // names a dialog, which goes too, into a new dialog of this object.
    void ExtractPieces(CPieceStream& stream) override;
    // The first dialog takes over the pieces of other's first dialog; every
    // other field stays that of the source.
    void MergePieces(CResource& other) override;
    void ReleaseContent() override { std::vector<std::unique_ptr<CDialogItem>>().swap(dialogs); }

    std::vector<std::unique_ptr<CDialogItem>> dialogs;
};

class CDialogCommand : public CResourceCommand {
public:
    CResource* Execute(Bytes data, CResource* resource) override;
};

} // namespace tervane
