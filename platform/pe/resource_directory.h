#pragma once
// The resource directory of a PE image exactly as stored: types, names and
// languages in stored order, names as UTF-16 without any case change, and the
// data entries' fields. The Win32 resource calls, `tervane list --json` and the
// resource updater all read the tree through here.
#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/pe/pe_image.h"
#include "platform/result.h"

namespace tervane::pe {

// A type, name or language as an entry of a directory stores it: a UTF-16
// name, or an ordinal (the low 16 bits of the entry's identifier, as the
// loader reads it).
class ResourceId {
public:
    ResourceId() = default;
    explicit ResourceId(std::uint16_t ordinal) : ordinal_(ordinal) {}
    explicit ResourceId(std::u16string name) : name_(std::move(name)) {}

    bool IsName() const { return name_.has_value(); }
    std::uint16_t Ordinal() const { return ordinal_; }
    const std::u16string& Name() const;

    bool operator==(const ResourceId&) const = default;
    // The order the loader's binary search needs: names before ordinals, names
    // by UTF-16 code unit (shorter prefix first), ordinals ascending.
    std::strong_ordering operator<=>(const ResourceId& other) const;

private:
    std::uint16_t ordinal_ = 0;
    std::optional<std::u16string> name_;
};

// IMAGE_RESOURCE_DATA_ENTRY.
struct ResourceDataEntry {
    std::uint32_t rva = 0;
    std::uint32_t size = 0;
    std::uint32_t codePage = 0;
    std::uint32_t reserved = 0;
};

// The header of an IMAGE_RESOURCE_DIRECTORY. The loader looks names up only
// among the first numberOfNamedEntries entries and ordinals among the rest.
struct ResourceDirectoryHeader {
    std::uint32_t characteristics = 0;
    std::uint32_t timeDateStamp = 0;
    std::uint16_t majorVersion = 0;
    std::uint16_t minorVersion = 0;
    std::uint16_t numberOfNamedEntries = 0;
    std::uint16_t numberOfIdEntries = 0;
};

struct ResourceLanguage {
    std::uint16_t language = 0;
    ResourceDataEntry data;
};

// Damage met while reading a directory is kept on that directory, with the
// entries read before it, so that only the steps that reach it fail.
struct ResourceName {
    ResourceId id;
    ResourceDirectoryHeader header;
    std::vector<ResourceLanguage> languages;
    std::optional<Error> damage;
};

struct ResourceType {
    ResourceId id;
    ResourceDirectoryHeader header;
    std::vector<ResourceName> names;
    std::optional<Error> damage;
};

struct ResourceTree {
    std::uint32_t rva = 0; // of the root, from the resource data directory
    ResourceDirectoryHeader header;
    std::vector<ResourceType> types;
    std::optional<Error> damage;

    // The first damage in enumeration order, or null for a sound tree.
    const Error* FirstDamage() const;
    std::size_t ResourceCount() const;
};

// Reads the tree of the resource data directory. Fails with
// ERROR_RESOURCE_DATA_NOT_FOUND when the image has no resource directory (none
// declared, or its RVA outside every section). Damage below that is recorded
// where it was met, with code ERROR_BAD_EXE_FORMAT: an offset outside the
// directory's section, a truncated structure, a directory where data is
// expected or the reverse, a directory reached twice (loops, shared
// subtrees), or more entries than the section can hold.
Result<ResourceTree> ReadResourceTree(const PeImage& image);

// The whole tree or its first damage: for callers that rewrite the directory.
Result<ResourceTree> ReadSoundResourceTree(const PeImage& image);

// The resource's bytes, the uninitialised tail of its section read as zeros.
// Fails with ERROR_RESOURCE_DATA_NOT_FOUND when the data does not lie inside
// one section, and with ERROR_NOT_ENOUGH_MEMORY when it asks for more than
// 1 MiB beyond what the file holds.
Result<std::vector<std::uint8_t>> ReadResourceData(const PeImage& image,
                                                   const ResourceDataEntry& entry);

// The same bytes, in place in the file when it holds all of them (bytes then
// live as long as the image), else copied into owned. Moving the value keeps
// bytes valid.
struct ResourceData {
    std::vector<std::uint8_t> owned;
    Bytes bytes;
};
Result<ResourceData> ViewResourceData(const PeImage& image, const ResourceDataEntry& entry);

} // namespace tervane::pe
