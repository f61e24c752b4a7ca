#pragma once
// Reads an image's resource directory into the updater's tree, exactly:
// stored names, code pages and data. Strict, since whatever it accepts is
// written back: a malformed directory fails with ERROR_BAD_EXE_FORMAT.
#include "platform/pe/pe_image.h"
#include "platform/update/resource_tree.h"

namespace tervane::update {

Result<ResourceTree> ReadResourceTree(const pe::PeImage& image);

} // namespace tervane::update
