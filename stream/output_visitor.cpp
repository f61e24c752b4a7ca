#include "stream/output_visitor.h"

#include "model/string_block.h"
#include "stream/event_items.h"

namespace tervane {

namespace {

const char* const kGroupNames[kGroupCount] = {"resources", "menus", "dialogs", "stringtable",
                                              "versioninfo"};

// The groups that a visit of each group closes, the first open one found.
// Their order assumes the enumeration's ascending order of type numbers.
struct Closes {
    GroupIndex groups[3];
    int count;
};
Closes ClosesFor(GroupIndex group) {
    switch (group) {
    case kDialogsGroup:
        return {{kMenusGroup}, 1};
    case kStringTableGroup:
        return {{kDialogsGroup, kMenusGroup}, 2};
    case kVersionInfoGroup:
        return {{kStringTableGroup, kDialogsGroup, kMenusGroup}, 3};
    default:
        return {{}, 0};
    }
}

std::u16string Widened(const std::string& ascii) {
    return std::u16string(ascii.begin(), ascii.end());
}

} // namespace

HRESULT COutputVisitor::SendTag(const TagDescriptor& tag) {
    return SendTagEvent(sink_, tag);
}

HRESULT COutputVisitor::SendText(std::u16string_view text) {
    return SendTextEvent(sink_, text);
}

void COutputVisitor::SendNewLine() {
    SendText(u"\n");
}

void COutputVisitor::SendIndent(short count) {
    static constexpr std::u16string_view kTabs = u"\t\t\t\t\t\t\t\t";
    std::size_t tabs = count > 0 ? static_cast<std::size_t>(count) : 0;
    if (tabs <= kTabs.size())
        SendText(kTabs.substr(0, tabs));
    else
        SendText(std::u16string(tabs, u'\t'));
}

void COutputVisitor::SendGroupTag(const char* name, bool open) {
    std::string bare(name);
    if (bare.find("resources") == std::string::npos)
        SendIndent(1);
    TagDescriptor tag;
    tag.name = Widened(bare);
    tag.tagText = Widened((open ? "<" : "</") + bare + ">");
    tag.structural = 1;
    tag.endTag = open ? 0 : 1;
    tag.startTag = open ? 1 : 0;
    tag.inlineTag = 0;
    SendTag(tag);
    SendNewLine();
}

void COutputVisitor::SendPieces(const CLabelPieceList& pieces) {
    for (const auto& piece : pieces) {
        if (const CTextLabelPiece* text = piece->AsText())
            SendText(text->text);
        else if (const CTagLabelPiece* tag = piece->AsTag())
            SendTag(tag->tag);
    }
}

void COutputVisitor::CloseGroup(GroupIndex group) {
    GetEmissionState().open[group] = 0;
    SendGroupTag(kGroupNames[group], false);
}

void COutputVisitor::OpenFrame(GroupIndex group, bool hasContent) {
    EmissionState& state = GetEmissionState();
    ++state.resourcesVisited;
    if (!state.open[kResourcesGroup] && hasContent) {
        state.open[kResourcesGroup] = 1;
        SendGroupTag(kGroupNames[kResourcesGroup], true);
    }
    if (state.open[group])
        return;
    Closes closes = ClosesFor(group);
    for (int i = 0; i < closes.count; ++i) {
        if (state.open[closes.groups[i]]) {
            CloseGroup(closes.groups[i]);
            break;
        }
    }
    if (hasContent) {
        state.open[group] = 1;
        SendGroupTag(kGroupNames[group], true);
    }
}

void COutputVisitor::CloseFrameIfLast(GroupIndex group) {
    EmissionState& state = GetEmissionState();
    if (state.resourcesVisited != state.resourcesToVisit)
        return;
    if (state.open[group])
        CloseGroup(group);
    if (state.open[kResourcesGroup])
        CloseGroup(kResourcesGroup);
}

int COutputVisitor::VisitStringBlock(CStringBlockResource* resource) {
    OpenFrame(kStringTableGroup, !resource->entries.empty());
    for (const PieceEntry& entry : resource->entries) {
        SendIndent(2);
        SendPieces(entry);
        SendNewLine();
    }
    CloseFrameIfLast(kStringTableGroup);
    return 0;
}

} // namespace tervane
