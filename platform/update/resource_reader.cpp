#include "platform/update/resource_reader.h"

#include <map>
#include <utility>

#include "platform/pe/resource_directory.h"
#include "platform/win32/last_error.h"

namespace tervane::update {

namespace {

ResKey KeyOf(const pe::ResourceId& id) {
    return id.IsName() ? ResKey::Name(id.Name()) : ResKey::Id(id.Ordinal());
}

} // namespace

Result<ResourceTree> ReadResourceTree(const pe::PeImage& image) {
    // The directory is read as its whole section, zero tail included: a
    // hostile virtual size must not turn into gigabytes of zeros.
    constexpr std::uint32_t kMaxSection = 256u << 20;
    pe::DataDirectory directory = image.Directory(pe::kResourceDirectory);
    if (auto index = image.SectionIndexForRva(directory.rva);
        directory.rva != 0 && index && image.Sections()[*index].MappedSize() > kMaxSection)
        return Error{ERROR_BAD_EXE_FORMAT, "resource section larger than 256 MiB"};
    auto exact = pe::ReadSoundResourceTree(image);
    if (!exact) {
        if (exact.error().code == ERROR_RESOURCE_DATA_NOT_FOUND)
            return ResourceTree{};
        return Error{ERROR_BAD_EXE_FORMAT, exact.error().context};
    }
    // Many entries may name one range of data; they share one blob, and the
    // copies stay within a bound tied to the file's size.
    std::map<std::pair<std::uint32_t, std::uint32_t>, Blob> blobs;
    std::uint64_t budget = 4 * std::uint64_t{image.FileBytes().size()} + (1u << 20);
    ResourceTree tree;
    for (const pe::ResourceType& type : exact->types) {
        for (const pe::ResourceName& name : type.names) {
            for (const pe::ResourceLanguage& language : name.languages) {
                const pe::ResourceDataEntry& entry = language.data;
                Blob& blob = blobs[{entry.rva, entry.size}];
                if (!blob) {
                    if (entry.size > budget)
                        return Error{ERROR_BAD_EXE_FORMAT,
                                     "resource data adds up to more than the file holds"};
                    budget -= entry.size;
                    auto bytes = pe::ReadResourceData(image, entry);
                    if (!bytes)
                        return Error{ERROR_BAD_EXE_FORMAT, bytes.error().context};
                    blob = MakeBlob(std::move(*bytes));
                }
                // A key stored twice keeps its first entry, as the loader finds it.
                tree.Insert(KeyOf(type.id), KeyOf(name.id), language.language,
                            ResourceLeaf{blob, entry.codePage});
            }
        }
    }
    return tree;
}

} // namespace tervane::update
