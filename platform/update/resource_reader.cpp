#include "platform/update/resource_reader.h"

#include <algorithm>
#include <cstdio>
#include <map>
#include <utility>

#include "platform/win32/last_error.h"

namespace tervane::update {

namespace {

constexpr std::uint32_t kSubdirectoryFlag = 0x80000000;
constexpr std::uint32_t kNameFlag = 0x80000000;
// Bounds for directories that point at each other: a shared subdirectory is
// legal but must not multiply into millions of leaves.
constexpr std::size_t kMaxLeaves = 1 << 18;

Error Malformed(std::string what, std::size_t offset) {
    char at[32];
    std::snprintf(at, sizeof at, " at offset 0x%zx", offset);
    return Error{ERROR_BAD_EXE_FORMAT, "resource directory" + std::string(at) + ": " + what};
}

struct Entry {
    ResKey key;
    std::uint32_t target = 0;
};

class TreeReader {
public:
    TreeReader(const pe::PeImage& image, Bytes directory)
        : image_(image), dir_(directory),
          dataBudget_(4 * std::uint64_t{image.FileBytes().size()} + (1u << 20)) {}

    Result<ResourceTree> Read() {
        ResourceTree tree;
        auto types = Entries(0);
        if (!types)
            return std::move(types.error());
        for (const Entry& type : *types) {
            if (!(type.target & kSubdirectoryFlag))
                return Malformed("type entry without a directory", 0);
            auto names = Entries(type.target & ~kSubdirectoryFlag);
            if (!names)
                return std::move(names.error());
            for (const Entry& name : *names) {
                if (!(name.target & kSubdirectoryFlag))
                    return Malformed("name entry without a directory", type.target);
                auto languages = Entries(name.target & ~kSubdirectoryFlag);
                if (!languages)
                    return std::move(languages.error());
                for (const Entry& language : *languages) {
                    if (language.key.named || (language.target & kSubdirectoryFlag))
                        return Malformed("language entry is not a data entry", name.target);
                    auto leaf = Leaf(language.target);
                    if (!leaf)
                        return std::move(leaf.error());
                    tree.Insert(type.key, name.key, language.key.id, std::move(*leaf));
                }
            }
        }
        return tree;
    }

private:
    Result<std::vector<Entry>> Entries(std::uint32_t offset) {
        ByteReader r(dir_);
        if (!r.Seek(offset) || !r.Skip(12))
            return Malformed("directory header runs past the section", offset);
        auto named = r.ReadU16LE();
        auto ids = r.ReadU16LE();
        if (!named || !ids)
            return Malformed("directory header runs past the section", offset);
        std::size_t count = std::size_t{*named} + *ids;
        if (count > r.Remaining() / 8)
            return Malformed("entries run past the section", offset);
        std::vector<Entry> entries;
        entries.reserve(count);
        for (std::size_t i = 0; i < count; ++i) {
            std::uint32_t nameField = *r.ReadU32LE();
            std::uint32_t target = *r.ReadU32LE();
            Entry entry{{}, target};
            if (nameField & kNameFlag) {
                auto name = Name(nameField & ~kNameFlag);
                if (!name)
                    return std::move(name.error());
                entry.key = ResKey::Name(std::move(*name));
            } else {
                entry.key = ResKey::Id(static_cast<WORD>(nameField));
            }
            entries.push_back(std::move(entry));
        }
        return entries;
    }

    Result<std::u16string> Name(std::uint32_t offset) {
        ByteReader r(dir_);
        if (!r.Seek(offset))
            return Malformed("name lies past the section", offset);
        auto length = r.ReadU16LE();
        if (!length || *length > r.Remaining() / 2)
            return Malformed("name runs past the section", offset);
        std::u16string name(*length, u'\0');
        for (char16_t& unit : name)
            unit = static_cast<char16_t>(*r.ReadU16LE());
        return name;
    }

    Result<ResourceLeaf> Leaf(std::uint32_t offset) {
        if (++leaves_ > kMaxLeaves)
            return Malformed("too many resources", offset);
        ByteReader r(dir_);
        if (!r.Seek(offset))
            return Malformed("data entry lies past the section", offset);
        auto rva = r.ReadU32LE();
        auto size = r.ReadU32LE();
        auto codePage = r.ReadU32LE();
        if (!rva || !size || !codePage)
            return Malformed("data entry runs past the section", offset);
        // Two entries may share their data; they then share one blob.
        auto known = blobs_.find({*rva, *size});
        if (known != blobs_.end())
            return ResourceLeaf{known->second, *codePage};
        if (*size > dataBudget_)
            return Malformed("resource data larger than the file", offset);
        dataBudget_ -= *size;
        std::optional<std::vector<std::uint8_t>> bytes =
            *size == 0 ? std::vector<std::uint8_t>{} : image_.ReadRva(*rva, *size);
        if (!bytes)
            return Malformed("resource data lies outside the sections", offset);
        Blob blob = MakeBlob(std::move(*bytes));
        blobs_.emplace(std::make_pair(*rva, *size), blob);
        return ResourceLeaf{std::move(blob), *codePage};
    }

    const pe::PeImage& image_;
    Bytes dir_;
    std::uint64_t dataBudget_;
    std::size_t leaves_ = 0;
    std::map<std::pair<std::uint32_t, std::uint32_t>, Blob> blobs_;
};

} // namespace

Result<ResourceTree> ReadResourceTree(const pe::PeImage& image) {
    pe::DataDirectory directory = image.Directory(pe::kResourceDirectory);
    if (directory.rva == 0)
        return ResourceTree{};
    auto index = image.SectionIndexForRva(directory.rva);
    if (!index)
        return Malformed("root lies outside the sections", directory.rva);
    // Offsets inside the directory count from its root, up to the section's
    // end; a hostile virtual size must not make us allocate gigabytes of zeros.
    const pe::SectionHeader& section = image.Sections()[*index];
    std::uint64_t length = section.MappedSize() - (directory.rva - section.virtualAddress);
    length = std::min<std::uint64_t>(length, image.FileBytes().size() + (1u << 16));
    auto content = image.ReadRva(directory.rva, static_cast<std::uint32_t>(length));
    if (!content)
        return Malformed("root lies outside the sections", directory.rva);
    TreeReader reader(image, *content);
    return reader.Read();
}

} // namespace tervane::update
