#include "model/dlginit_resource.h"

namespace tervane {

int CDlgInitResource::Accept(CResourceVisitor& visitor) {
    visitor.VisitDlgInit(this);
    return 0;
}

} // namespace tervane
