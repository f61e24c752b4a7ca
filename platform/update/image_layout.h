#pragma once
// Puts a resource tree into a PE image: decides where the resource section
// goes, writes it, and fixes the headers that follow from it. Every byte that
// code or data of the image can refer to stays where it was.
#include <cstdint>
#include <vector>

#include "platform/pe/pe_image.h"
#include "platform/update/resource_tree.h"

namespace tervane::update {

enum class Placement {
    kUnchanged,  // no resources before or after
    kResizeLast, // the resource section is the last: resized where it stands
    kMoveReloc,  // followed only by relocations, which move behind it
    kInPlace,    // followed by other sections, or shared: the new tree fits
    kAppend,     // a new resource section after the last one
};

struct ImagePlan {
    Placement placement = Placement::kUnchanged;
    std::size_t section = 0; // the section written (== count for a new one)
    std::uint32_t rva = 0;   // where the tree's root goes
    std::uint32_t treeSize = 0;
    bool dedicated = false; // the section holds the resources and nothing else
};

// Cheap: decides without writing, so a transaction fails before anything is
// written when the image cannot take the tree.
Result<ImagePlan> PlanImage(const pe::PeImage& image, std::uint32_t treeSize);

// The whole new file. An Authenticode certificate is dropped with its
// directory entry; appended data stays at the end.
Result<std::vector<std::uint8_t>> RewriteImage(const pe::PeImage& image, const ResourceTree& tree);

} // namespace tervane::update
