#include "model/version_info_resource.h"
#include "stream/output_visitor.h"

namespace tervane {

// Version blocks are not read yet: they have no content, and take part in the frame only.
int COutputVisitor::VisitVersionInfo(CVersionInfoResource*) {
    OpenFrame(kVersionInfoGroup, false);
    CloseFrameIfLast(kVersionInfoGroup);
    return 0;
}

} // namespace tervane
