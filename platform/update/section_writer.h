#pragma once
// Writes a resource tree as the content of a resource section: all directory
// tables (root, then every type's, then every name's) and the data entries,
// then the name strings, then the data. Directory headers carry version 4.0
// and time stamp 0; entries and data are aligned to 4 bytes, names to 2.
#include <cstdint>
#include <vector>

#include "platform/update/resource_tree.h"

namespace tervane::update {

// Pass one: where every table, string and blob goes, as offsets into the
// section. Each region ends where the next begins: directories, data entries,
// names, then (aligned to 4) the data.
struct SectionPlan {
    std::vector<std::uint64_t> nameDirs;     // per type
    std::vector<std::uint64_t> languageDirs; // per name, in tree order
    std::uint64_t dataEntries = 0;
    std::uint64_t strings = 0;
    std::uint64_t stringsEnd = 0;
    std::uint64_t data = 0;
    std::uint64_t dataEnd = 0;
    std::uint64_t total = 0;
};

Result<SectionPlan> PlanResourceSection(const ResourceTree& tree);

// The size of the section content, without writing it or walking the tree, so
// that a transaction can learn whether its result fits before anything is
// written.
Result<std::uint32_t> ResourceSectionSize(const ResourceTree& tree);

// Data entries hold RVAs, so the content depends on where the section stands.
Result<std::vector<std::uint8_t>> BuildResourceSection(const ResourceTree& tree,
                                                       std::uint32_t sectionRva);

// Pass two on a given plan: every region is written through a cursor bounded
// by it and must end exactly where it was planned to; a plan that does not
// match the tree fails with ERROR_INVALID_DATA and the region it broke.
Result<std::vector<std::uint8_t>>
WriteResourceSection(const ResourceTree& tree, const SectionPlan& plan, std::uint32_t sectionRva);

} // namespace tervane::update
