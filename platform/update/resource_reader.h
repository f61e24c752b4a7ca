#pragma once
// The updater's view of an image's resources, read through the PE reader's
// exact tree: stored names, code pages and data. Strict, since whatever it
// accepts is written back: any damage fails with ERROR_BAD_EXE_FORMAT.
#include "platform/pe/pe_image.h"
#include "platform/update/resource_tree.h"

namespace tervane::update {

Result<ResourceTree> ReadResourceTree(const pe::PeImage& image);

} // namespace tervane::update
