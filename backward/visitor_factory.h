#pragma once
// The factory of visitors: the forward conversion's and the backward one's.
#include <memory>

#include "frame/resource.h"

namespace tervane {

enum VisitorKind : int {
    kOutputVisitorKind = 1,
    kUpdateVisitorKind = 2,
};

// A COutputVisitor for kind 1, a CUpdateVisitor for kind 2, null otherwise.
std::unique_ptr<CResourceVisitor> CreateVisitor(int kind);

} // namespace tervane
