// A merged dialog written anew, and the init data of its combo and list boxes.
#include "backward/update_visitor.h"
#include "frame/conversion_state.h"
#include "frame/diagnostics/trace.h"
#include "model/dialog_resource.h"
#include "model/dlginit_table.h"

namespace tervane {

int CUpdateVisitor::VisitDialog(CDialogResource* resource) {
    ClearContext();
    if (resource->dialogs.empty())
        return 0;
    CDialogItem& item = *resource->dialogs.front();
    const std::string& identifier = resource->identifierText;
    Trace("\nReady to construct dialog buffer............\n");
    Trace("Constructing DialogBuffer id = " + identifier + " ...........\n");
    item.targetLanguage = static_cast<WORD>(g_targetLanguage);
    item.buffer.SetContext("dialog id = " + identifier);
    item.ConstructDialogBuffer();

    Trace("Deleting source dialog id = " + identifier + "..........\n");
    Trace("Updating translated dialog id = " + identifier + "............\n");
    UpdateResourceData(kDialogType, identifier, item.buffer.data(), item.buffer.used(),
                       resource->targetLanguage);

    Trace("Deleting source dlginit..........\n");
    Trace("Updating translated dlginit............\n");
    CDlgInitData* data = CDlgInitTable::GetInstance().Find(identifier);
    if (data == nullptr) {
        Trace("There is no dlginit with this dialog.\n");
        return 0;
    }
    data->buffer.SetContext("dlginit id = " + identifier);
    data->Rebuild();
    UpdateResourceData(kDlgInitType, identifier, data->buffer.data(), data->buffer.used(),
                       resource->targetLanguage);
    return 0;
}

} // namespace tervane
