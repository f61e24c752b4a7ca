#include "model/dialog_resource.h"
#include "stream/output_visitor.h"

namespace tervane {

// Dialogs are not read yet: they have no content, and take part in the frame only.
int COutputVisitor::VisitDialog(CDialogResource*) {
    OpenFrame(kDialogsGroup, false);
    CloseFrameIfLast(kDialogsGroup);
    return 0;
}

} // namespace tervane
