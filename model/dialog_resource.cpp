#include "model/dialog_resource.h"

namespace tervane {

int CDialogResource::Accept(CResourceVisitor& visitor) {
    visitor.VisitDialog(this);
    return 0;
}

} // namespace tervane
