#pragma once
// A string table block: up to sixteen counted UTF-16 strings, each with text
// becoming one entry of pieces framed by <string id="N"> and </string>.
#include <vector>

#include "frame/resource.h"

namespace tervane {

class CLabelParser;

using PieceEntry = CLabelPieceList;

class CStringBlockResource : public CResource {
public:
    int Accept(CResourceVisitor& visitor) override;
    std::unique_ptr<CTagLabelPiece> GetOpenTag() const override;
    std::unique_ptr<CTagLabelPiece> GetCloseTag() const override;
    void ExtractPieces(CPieceStream& stream) override;
    void MergePieces(CResource& other) override;
    void ReleaseContent() override { std::vector<PieceEntry>().swap(entries); }

    // Entries in ascending order of string number; strings without text have none.
    std::vector<PieceEntry> entries;
};

class CStringBlockCommand : public CResourceCommand {
public:
    CResource* Execute(Bytes data, CResource* resource) override;
};

// The string at offset, which moves behind it. Throws CParserException when
// the count runs past the data.
std::u16string ReadCountedString(Bytes data, std::size_t& offset);
// One string's entry; empty when the string is.
PieceEntry ParseString(Bytes data, std::size_t& offset, CLabelParser& parser, long number);
// The number in the entry's first structural tag, 0 without one.
long GetStringNumber(const PieceEntry& entry);

} // namespace tervane
