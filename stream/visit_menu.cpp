#include "model/menu_resource.h"
#include "stream/output_visitor.h"

namespace tervane {

// Menus are not read yet: they have no content, and take part in the frame only.
int COutputVisitor::VisitMenu(CMenuResource*) {
    OpenFrame(kMenusGroup, false);
    CloseFrameIfLast(kMenusGroup);
    return 0;
}

} // namespace tervane
