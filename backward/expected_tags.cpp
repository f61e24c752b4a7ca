// The expected tag sequence repeats the group logic of the output visitor, on
// the same emission state, so that it equals what was emitted.
#include "backward/resource_verifier.h"
#include "model/dialog_resource.h"
#include "model/dlginit_resource.h"
#include "model/menu_resource.h"
#include "model/string_block.h"
#include "model/version_info_resource.h"
#include "stream/emission_state.h"

namespace tervane {

namespace {

const char* const kGroupNames[kGroupCount] = {"resources", "menus", "dialogs", "stringtable",
                                              "versioninfo"};

class ExpectedTags {
public:
    explicit ExpectedTags(TagList& out) : out_(out), state_(GetEmissionState()) {}

    void Open(GroupIndex group) {
        const std::string name = kGroupNames[group];
        out_.push_back(*MakeOpenTag(name, "<" + name + ">"));
        state_.open[group] = 1;
    }
    void Close(GroupIndex group) {
        const std::string name = kGroupNames[group];
        out_.push_back(*MakeCloseTag(name, "</" + name + ">"));
        state_.open[group] = 0;
    }
    void CloseFirstOpen(std::initializer_list<GroupIndex> groups) {
        for (GroupIndex group : groups)
            if (state_.open[group]) {
                Close(group);
                return;
            }
    }
    // Steps 1 and 2 of every kind; the groups before it close as the visitor closes them.
    void Enter(GroupIndex group, bool hasUnits, std::initializer_list<GroupIndex> closes) {
        if (!state_.open[kResourcesGroup] && hasUnits)
            Open(kResourcesGroup);
        if (state_.open[group])
            return;
        CloseFirstOpen(closes);
        if (hasUnits)
            Open(group);
    }
    void LeaveIfLast(GroupIndex group) {
        if (state_.resourcesVisited != state_.resourcesToVisit)
            return;
        if (state_.open[group])
            Close(group);
        if (state_.open[kResourcesGroup])
            Close(kResourcesGroup);
    }
    void Append(const CLabelPieceList& pieces) {
        for (const auto& piece : pieces)
            if (const CTagLabelPiece* tag = piece->AsTag())
                out_.push_back(*tag);
    }
    void AppendMenuRecord(const MenuItemRecord& record) {
        Append(record.pieces);
        for (const MenuItemRecord& child : record.children)
            AppendMenuRecord(child);
    }

private:
    TagList& out_;
    EmissionState& state_;
};

} // namespace

int CResourceVerifier::BuildExpectedTags(ResourceRefs resources, TagList& expected) {
    EmissionState& state = GetEmissionState();
    state.resourcesVisited = 0;
    state.ClearGroups();
    ExpectedTags tags(expected);
    for (CResource* resource : resources) {
        if (dynamic_cast<CDlgInitResource*>(resource) != nullptr)
            continue;
        ++state.resourcesVisited;
        if (auto* menu = dynamic_cast<CMenuResource*>(resource)) {
            tags.Enter(kMenusGroup, !menu->items.empty(), {});
            for (const MenuItemRecord& record : menu->items)
                tags.AppendMenuRecord(record);
            tags.LeaveIfLast(kMenusGroup);
        } else if (auto* dialog = dynamic_cast<CDialogResource*>(resource)) {
            const bool hasPieces =
                !dialog->dialogs.empty() && !dialog->dialogs.front()->pieces.empty();
            tags.Enter(kDialogsGroup, hasPieces, {kMenusGroup});
            if (!dialog->dialogs.empty())
                tags.Append(dialog->dialogs.front()->pieces);
            tags.LeaveIfLast(kDialogsGroup);
        } else if (auto* block = dynamic_cast<CStringBlockResource*>(resource)) {
            tags.Enter(kStringTableGroup, !block->entries.empty(), {kDialogsGroup, kMenusGroup});
            for (const PieceEntry& entry : block->entries)
                tags.Append(entry);
            tags.LeaveIfLast(kStringTableGroup);
        } else if (auto* version = dynamic_cast<CVersionInfoResource*>(resource)) {
            tags.Enter(kVersionInfoGroup, !version->entries.empty(),
                       {kStringTableGroup, kDialogsGroup, kMenusGroup});
            for (const CLabelPieceList& entry : version->entries)
                tags.Append(entry);
            tags.LeaveIfLast(kVersionInfoGroup);
        }
    }
    return 1;
}

} // namespace tervane
