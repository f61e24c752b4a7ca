#include "model/version_info_resource.h"

namespace tervane {

int CVersionInfoResource::Accept(CResourceVisitor& visitor) {
    visitor.VisitVersionInfo(this);
    return 0;
}

} // namespace tervane
