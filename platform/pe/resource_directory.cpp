#include "platform/pe/resource_directory.h"

#include <cstdio>
#include <unordered_set>

#include "platform/byte_reader.h"
#include "platform/win32/last_error.h"

namespace tervane::pe {

const std::u16string& ResourceId::Name() const {
    static const std::u16string empty;
    return name_ ? *name_ : empty;
}

std::strong_ordering ResourceId::operator<=>(const ResourceId& other) const {
    if (IsName() != other.IsName())
        return IsName() ? std::strong_ordering::less : std::strong_ordering::greater;
    if (IsName()) {
        // char16_t compares as unsigned code units, which is the loader's order.
        int c = std::u16string_view(*name_).compare(*other.name_);
        return c < 0 ? std::strong_ordering::less
                     : (c > 0 ? std::strong_ordering::greater : std::strong_ordering::equal);
    }
    return ordinal_ <=> other.ordinal_;
}

const Error* ResourceTree::FirstDamage() const {
    for (const ResourceType& type : types) {
        for (const ResourceName& name : type.names)
            if (name.damage)
                return &*name.damage;
        if (type.damage)
            return &*type.damage;
    }
    return damage ? &*damage : nullptr;
}

std::size_t ResourceTree::ResourceCount() const {
    std::size_t count = 0;
    for (const ResourceType& type : types)
        for (const ResourceName& name : type.names)
            count += name.languages.size();
    return count;
}

namespace {

constexpr std::uint32_t kHighBit = 0x80000000u;
constexpr std::size_t kDirectoryHeaderSize = 16;
constexpr std::size_t kEntrySize = 8;
constexpr std::size_t kDataEntrySize = 16;
// The loader maps a section's uninitialised tail lazily; we read it as zeros,
// but only so far, so that a section that claims gigabytes costs nothing.
constexpr std::uint64_t kMaxZeroTail = 64u << 10; // for the directory
constexpr std::uint64_t kMaxZeroFill = 1u << 20;  // for one resource's data

// Bytes of the section from offset on that the file holds.
std::uint64_t BackedBytes(const SectionHeader& section, std::uint32_t offset) {
    std::uint64_t rawEnd = std::min(section.sizeOfRawData, section.MappedSize());
    return rawEnd > offset ? rawEnd - offset : 0;
}

std::string Hex(std::uint64_t value) {
    char text[24];
    std::snprintf(text, sizeof text, "0x%llX", static_cast<unsigned long long>(value));
    return text;
}

Error Damage(std::uint64_t offset, const std::string& what) {
    return Error{ERROR_BAD_EXE_FORMAT, "resource directory at offset " + Hex(offset) + ": " + what};
}

struct RawEntry {
    std::uint32_t name = 0;
    std::uint32_t target = 0;
};

// Reads the directory bytes once. Every directory may be read only once, so
// a loop or a shared subtree is damage, and the entries of all directories
// together can't outnumber what the section holds: a hostile file can't make
// the walk longer than its own size.
class TreeReader {
public:
    explicit TreeReader(Bytes bytes) : bytes_(bytes), entryBudget_(bytes.size() / kEntrySize) {}

    Result<std::vector<RawEntry>> ReadDirectory(std::uint32_t offset,
                                                ResourceDirectoryHeader& header) {
        if (!visited_.insert(offset).second)
            return Damage(offset, "a directory is reached a second time");
        auto at = ByteReader(bytes_).Slice(offset, kDirectoryHeaderSize);
        if (!at)
            return Damage(offset, "directory header lies outside the section");
        header.characteristics = *at->ReadU32LE();
        header.timeDateStamp = *at->ReadU32LE();
        header.majorVersion = *at->ReadU16LE();
        header.minorVersion = *at->ReadU16LE();
        header.numberOfNamedEntries = *at->ReadU16LE();
        header.numberOfIdEntries = *at->ReadU16LE();
        std::size_t count = std::size_t{header.numberOfNamedEntries} + header.numberOfIdEntries;
        std::size_t first = std::size_t{offset} + kDirectoryHeaderSize;
        if (count > (bytes_.size() - first) / kEntrySize)
            return Damage(offset, std::to_string(count) + " entries run past the section");
        if (count > entryBudget_)
            return Damage(offset, "more entries than the section can hold");
        entryBudget_ -= count;
        ByteReader entries = *ByteReader(bytes_).Slice(first, count * kEntrySize);
        std::vector<RawEntry> out(count);
        for (std::size_t i = 0; i < count; ++i) {
            out[i].name = *entries.ReadU32LE();
            out[i].target = *entries.ReadU32LE();
        }
        return out;
    }

    Result<ResourceId> DecodeId(const RawEntry& entry, std::uint32_t directory) {
        if (!(entry.name & kHighBit))
            return ResourceId(static_cast<std::uint16_t>(entry.name));
        std::uint32_t offset = entry.name & ~kHighBit;
        ByteReader r(bytes_);
        std::optional<std::uint16_t> length;
        if (!r.Seek(offset) || !(length = r.ReadU16LE()))
            return Damage(directory, "name at " + Hex(offset) + " lies outside the section");
        auto units = r.ReadBytes(std::size_t{*length} * 2);
        if (!units)
            return Damage(directory, "name at " + Hex(offset) + " runs past the section");
        std::u16string name(*length, u'\0');
        ByteReader text(*units);
        for (char16_t& unit : name)
            unit = static_cast<char16_t>(*text.ReadU16LE());
        return ResourceId(std::move(name));
    }

    Result<std::uint32_t> Subdirectory(const RawEntry& entry, std::uint32_t directory) {
        if (!(entry.target & kHighBit))
            return Damage(directory, "an entry holds data where a directory is expected");
        return entry.target & ~kHighBit;
    }

    Result<ResourceDataEntry> DataEntry(const RawEntry& entry, std::uint32_t directory) {
        if (entry.target & kHighBit)
            return Damage(directory, "an entry holds a directory where data is expected");
        auto at = ByteReader(bytes_).Slice(entry.target, kDataEntrySize);
        if (!at)
            return Damage(directory,
                          "data entry at " + Hex(entry.target) + " lies outside the section");
        ResourceDataEntry data;
        data.rva = *at->ReadU32LE();
        data.size = *at->ReadU32LE();
        data.codePage = *at->ReadU32LE();
        data.reserved = *at->ReadU32LE();
        return data;
    }

private:
    Bytes bytes_;
    std::size_t entryBudget_;
    std::unordered_set<std::uint32_t> visited_;
};

void ReadLanguages(TreeReader& reader, std::uint32_t offset, ResourceName& name) {
    auto entries = reader.ReadDirectory(offset, name.header);
    if (!entries) {
        name.damage = std::move(entries.error());
        return;
    }
    for (const RawEntry& raw : *entries) {
        if (raw.name & kHighBit) {
            name.damage = Damage(offset, "a language is given as a name");
            return;
        }
        auto data = reader.DataEntry(raw, offset);
        if (!data) {
            name.damage = std::move(data.error());
            return;
        }
        name.languages.push_back({static_cast<std::uint16_t>(raw.name), *data});
    }
}

void ReadNames(TreeReader& reader, std::uint32_t offset, ResourceType& type) {
    auto entries = reader.ReadDirectory(offset, type.header);
    if (!entries) {
        type.damage = std::move(entries.error());
        return;
    }
    for (const RawEntry& raw : *entries) {
        auto id = reader.DecodeId(raw, offset);
        if (!id) {
            type.damage = std::move(id.error());
            return;
        }
        ResourceName& name = type.names.emplace_back();
        name.id = std::move(*id);
        auto sub = reader.Subdirectory(raw, offset);
        if (!sub)
            name.damage = std::move(sub.error());
        else
            ReadLanguages(reader, *sub, name);
    }
}

} // namespace

Result<ResourceTree> ReadResourceTree(const PeImage& image) {
    DataDirectory directory = image.Directory(kResourceDirectory);
    if (directory.rva == 0 || directory.size == 0)
        return Error{ERROR_RESOURCE_DATA_NOT_FOUND, "the image declares no resource directory"};
    auto index = image.SectionIndexForRva(directory.rva);
    if (!index)
        return Error{ERROR_RESOURCE_DATA_NOT_FOUND,
                     "the resource directory's RVA " + Hex(directory.rva) + " lies in no section"};
    // Offsets in the directory count from its root and stay inside its section.
    const SectionHeader& section = image.Sections()[*index];
    std::uint32_t skip = directory.rva - section.virtualAddress;
    std::uint64_t length = std::min<std::uint64_t>(section.MappedSize() - skip,
                                                   BackedBytes(section, skip) + kMaxZeroTail);
    // Read in place when the file holds the whole directory, as it nearly always does.
    std::vector<std::uint8_t> copy;
    std::optional<Bytes> view = image.ViewRva(directory.rva, static_cast<std::uint32_t>(length));
    if (!view)
        copy = *image.ReadRva(directory.rva, static_cast<std::uint32_t>(length));
    Bytes bytes = view ? *view : Bytes(copy);

    ResourceTree tree;
    tree.rva = directory.rva;
    TreeReader reader(bytes);
    auto entries = reader.ReadDirectory(0, tree.header);
    if (!entries) {
        tree.damage = std::move(entries.error());
        return tree;
    }
    for (const RawEntry& raw : *entries) {
        auto id = reader.DecodeId(raw, 0);
        if (!id) {
            tree.damage = std::move(id.error());
            break;
        }
        ResourceType& type = tree.types.emplace_back();
        type.id = std::move(*id);
        auto sub = reader.Subdirectory(raw, 0);
        if (!sub)
            type.damage = std::move(sub.error());
        else
            ReadNames(reader, *sub, type);
    }
    return tree;
}

Result<ResourceTree> ReadSoundResourceTree(const PeImage& image) {
    auto tree = ReadResourceTree(image);
    if (tree) {
        if (const Error* damage = tree->FirstDamage())
            return *damage;
    }
    return tree;
}

Result<ResourceData> ViewResourceData(const PeImage& image, const ResourceDataEntry& entry) {
    if (std::optional<Bytes> view = image.ViewRva(entry.rva, entry.size))
        return ResourceData{{}, *view};
    auto copy = ReadResourceData(image, entry);
    if (!copy)
        return copy.error();
    ResourceData data{std::move(*copy), {}};
    data.bytes = data.owned;
    return data;
}

Result<std::vector<std::uint8_t>> ReadResourceData(const PeImage& image,
                                                   const ResourceDataEntry& entry) {
    auto notFound = [&] {
        return Error{ERROR_RESOURCE_DATA_NOT_FOUND, "resource data at RVA " + Hex(entry.rva) +
                                                        " of " + std::to_string(entry.size) +
                                                        " bytes lies in no section"};
    };
    auto index = image.SectionIndexForRva(entry.rva);
    if (!index)
        return notFound();
    const SectionHeader& section = image.Sections()[*index];
    std::uint32_t offset = entry.rva - section.virtualAddress;
    if (!InBounds(offset, entry.size, section.MappedSize()))
        return notFound();
    if (entry.size > BackedBytes(section, offset) + kMaxZeroFill)
        return Error{ERROR_NOT_ENOUGH_MEMORY, "resource data at RVA " + Hex(entry.rva) +
                                                  " asks for " + std::to_string(entry.size) +
                                                  " bytes that the file does not hold"};
    return std::move(*image.ReadRva(entry.rva, entry.size));
}

} // namespace tervane::pe
