#pragma once
// Turns the model objects of the forward conversion into tag and text events,
// adding the document's frame and the white space between the tags.
#include <string>
#include <string_view>

#include "frame/resource.h"
#include "host/events.h"
#include "host/tag_descriptor.h"
#include "stream/emission_state.h"

namespace tervane {

struct MenuItemRecord;
class CTagLabelPiece;
struct TagWords;

class COutputVisitor : public CResourceVisitor {
public:
    // The sink is not counted: the engine keeps its own reference while it runs.
    void SetSink(IEvents* sink) { sink_ = sink; }

    int VisitVersionInfo(CVersionInfoResource* resource) override;
    int VisitDialog(CDialogResource* resource) override;
    int VisitMenu(CMenuResource* resource) override;
    int VisitStringBlock(CStringBlockResource* resource) override;

private:
    HRESULT SendTag(const TagDescriptor& tag);
    HRESULT SendText(std::u16string_view text);
    void SendNewLine();
    void SendIndent(short count);
    void SendGroupTag(const char* name, bool open);
    void SendPieces(const CLabelPieceList& pieces);
    // The white space around a dialog's tags, decided by words in the tag text.
    void SendIndentBefore(const TagWords& words, bool start);
    void SendLineEndAfter(const TagWords& words);

    // The frame common to every visit: root and group tags before the object,
    // and the closing ones after the last object of the conversion.
    void OpenFrame(GroupIndex group, bool hasContent);
    void CloseFrameIfLast(GroupIndex group);
    void CloseGroup(GroupIndex group);

    // The menu walk: a record's pieces, then its children, depth first.
    void WalkMenuRecord(const MenuItemRecord& record, bool root);
    void SendMenuTag(const CTagLabelPiece& piece, bool root);

    IEvents* sink_ = nullptr;
    // Indentation depth in dialogs and menus, set at the start of each visit.
    short level_ = 0;
};

} // namespace tervane
