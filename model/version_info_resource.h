#pragma once
// A version information block. Of its values only five are offered for
// translation, each as one entry framed by a tag of its key's name.
#include <vector>

#include "frame/resource.h"
#include "model/version_block.h"

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
    void ExtractPieces(CPieceStream& stream) override;
    void MergePieces(CResource& other) override;

    // In the fixed order comments, legalcopyright, productversion,
    // productname, legaltrademarks; values without text have none.
    std::vector<CLabelPieceList> entries;
    CVersionBlock block;
    VersionTexts sourceValues;
    LONG hasValues = 1; // 0 when none of the five has text
};

class CVersionInfoCommand : public CResourceCommand {
public:
    CResource* Execute(Bytes data, CResource* resource) override;

private:
    CVersionBlock block_;
};

// The keys offered for translation, in the order of the entries.
inline constexpr const char* kVersionEntryKeys[] = {"comments", "legalcopyright", "productversion",
                                                    "productname", "legaltrademarks"};

} // namespace tervane
