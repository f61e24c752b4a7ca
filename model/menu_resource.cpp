#include "model/menu_resource.h"

namespace tervane {

int CMenuResource::Accept(CResourceVisitor& visitor) {
    visitor.VisitMenu(this);
    return 0;
}

} // namespace tervane
