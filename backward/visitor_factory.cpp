#include "backward/visitor_factory.h"

#include "backward/update_visitor.h"
#include "stream/output_visitor.h"

namespace tervane {

std::unique_ptr<CResourceVisitor> CreateVisitor(int kind) {
    switch (kind) {
    case kOutputVisitorKind:
        return std::make_unique<COutputVisitor>();
    case kUpdateVisitorKind:
        return std::make_unique<CUpdateVisitor>();
    default:
        return nullptr;
    }
}

} // namespace tervane
