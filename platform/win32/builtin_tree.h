#pragma once
// The module's compiled-in resources laid out as a resource directory.
#include <cstdint>
#include <span>
#include <vector>

#include "frame/module_resources/module_resources.h"
#include "platform/pe/resource_directory.h"

namespace tervane {

// Orders the table as a resource compiler orders a directory (names upper
// case and before ordinals), so that lookups and enumeration behave as on a
// PE file. Each data entry's rva is the index of its bytes in data.
pe::ResourceTree BuildBuiltinTree(const std::vector<module_resources::Resource>& table,
                                  std::vector<std::span<const std::uint8_t>>& data);

} // namespace tervane
