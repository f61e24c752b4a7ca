#pragma once
// The contract between the conversion engine and the resource models: a model
// object is filled by a short-lived command and handed on by double dispatch.
#include <cstdint>
#include <memory>
#include <string>

#include "label/pieces/label_piece.h"
#include "platform/byte_reader.h"
#include "platform/win32/res_name.h"
#include "platform/win32/types.h"

namespace tervane {

class CResourceVisitor;
class CStringBlockResource;
class CDialogResource;
class CMenuResource;
class CVersionInfoResource;
class CDlgInitResource;

// Resource types by their Win32 numbers.
enum ResourceTypeNumber : WORD {
    kMenuType = 4,
    kDialogType = 5,
    kStringType = 6,
    kVersionType = 16,
    kDlgInitType = 240,
};

class CResource {
public:
    virtual ~CResource() = default;

    virtual int Accept(CResourceVisitor& visitor) = 0;
    virtual std::unique_ptr<CTagLabelPiece> GetOpenTag() const = 0;
    virtual std::unique_ptr<CTagLabelPiece> GetCloseTag() const = 0;
    // Moves this resource's pieces out of the front of the translated stream.
    virtual void ExtractPieces(CPieceStream& stream) = 0;
    // Takes over the pieces of other, an object of the same class.
    virtual void MergePieces(CResource& /*other*/) {}
    // Frees what was read into this object once it has been emitted: the
    // forward conversion needs it no more, and the next batch reuses the
    // memory. The object stays on the list with its identity.
    virtual void ReleaseContent() {}

    WORD language = 0;
    WORD targetLanguage = 0;
    DWORD codePage = 0;
    std::string identifierText;
    DWORD size = 0;
    ResName name;

protected:
    // The group tags of the document, with the marks of a structural tag.
    static std::unique_ptr<CTagLabelPiece> GroupTag(const char* groupName, bool open);
};

class CResourceCommand {
public:
    virtual ~CResourceCommand() = default;
    // Reads data, the resource's bytes, into resource and returns the object
    // to emit. Any failure leaves as CParserException.
    virtual CResource* Execute(Bytes data, CResource* resource) = 0;
    virtual std::string GetName() const { return {}; }
};

// Does nothing for any class, so that a visitor replaces only what it needs.
class CResourceVisitor {
public:
    virtual ~CResourceVisitor() = default;
    // The file that a rebuilding visitor writes to; set right after it is made.
    std::u16string workPath;

    virtual int VisitVersionInfo(CVersionInfoResource*) { return 0; }
    virtual int VisitDlgInit(CDlgInitResource*) { return 0; }
    virtual int VisitDialog(CDialogResource*) { return 0; }
    virtual int VisitMenu(CMenuResource*) { return 0; }
    virtual int VisitStringBlock(CStringBlockResource*) { return 0; }
};

// New model object or command for one of the five types; null for any other.
std::unique_ptr<CResource> CreateResource(WORD type);
std::unique_ptr<CResourceCommand> CreateCommand(WORD type);

// The text every reader failure ends in.
inline constexpr const char* kCorruptedDocumentMessage =
    "The selected document appears to be corrupted or in an invalid/unsupported format.\n"
    "Please verify and try again.";

} // namespace tervane
