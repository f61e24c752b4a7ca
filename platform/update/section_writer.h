#pragma once
// Writes a resource tree as the content of a resource section: all directory
// tables (root, then every type's, then every name's) and the data entries,
// then the name strings, then the data. Directory headers carry version 4.0
// and time stamp 0; entries and data are aligned to 4 bytes, names to 2.
#include <cstdint>
#include <vector>

#include "platform/update/resource_tree.h"

namespace tervane::update {

// The size of the section content, without writing it, so that a transaction
// can learn whether its result fits before anything is written.
Result<std::uint32_t> ResourceSectionSize(const ResourceTree& tree);

// Data entries hold RVAs, so the content depends on where the section stands.
Result<std::vector<std::uint8_t>> BuildResourceSection(const ResourceTree& tree,
                                                       std::uint32_t sectionRva);

} // namespace tervane::update
