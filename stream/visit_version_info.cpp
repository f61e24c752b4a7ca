#include "model/version_info_resource.h"
#include "stream/output_visitor.h"

namespace tervane {

// Each value on a line of its own, as the strings stand.
int COutputVisitor::VisitVersionInfo(CVersionInfoResource* resource) {
    OpenFrame(kVersionInfoGroup, !resource->entries.empty());
    for (const CLabelPieceList& entry : resource->entries) {
        SendIndent(2);
        SendPieces(entry);
        SendNewLine();
    }
    CloseFrameIfLast(kVersionInfoGroup);
    return 0;
}

} // namespace tervane
