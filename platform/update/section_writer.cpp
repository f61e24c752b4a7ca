#include "platform/update/section_writer.h"

#include <limits>

#include "platform/byte_reader.h"
#include "platform/win32/last_error.h"

namespace tervane::update {

namespace {

constexpr std::uint32_t kHighBit = 0x80000000;
constexpr std::uint64_t kDirectoryHeader = 16;
constexpr std::uint64_t kDirectoryEntry = 8;
constexpr std::uint64_t kDataEntry = 16;

std::uint64_t Align(std::uint64_t value, std::uint64_t alignment) {
    return (value + alignment - 1) / alignment * alignment;
}

Error TooLarge(const std::string& what) {
    return Error{ERROR_NOT_ENOUGH_MEMORY, "resource section: " + what};
}

// Pass one: where every table, string and blob goes. Sizes are counted in 64
// bits and checked once against the 31 bits that an entry's offset can hold.
struct Layout {
    std::vector<std::uint64_t> nameDirs;     // per type
    std::vector<std::uint64_t> languageDirs; // per name, in tree order
    std::uint64_t dataEntries = 0;
    std::uint64_t strings = 0;
    std::uint64_t data = 0;
    std::uint64_t total = 0;
};

Result<Layout> Plan(const ResourceTree& tree) {
    const TypeMap& types = tree.Types();
    Layout layout;
    bool empty = false;
    std::uint64_t leaves = 0, stringBytes = 0, dataBytes = 0;
    for (const auto& [type, nameMap] : types) {
        if (nameMap.size() > 0xFFFF)
            return TooLarge("more than 65535 names in one type");
        if (type.named)
            stringBytes += 2 + 2 * std::uint64_t{type.name.size()};
        for (const auto& [name, languages] : nameMap) {
            if (languages.size() > 0xFFFF)
                return TooLarge("more than 65535 languages in one name");
            if (name.named)
                stringBytes += 2 + 2 * std::uint64_t{name.name.size()};
            leaves += languages.size();
            for (const auto& [language, leaf] : languages) {
                dataBytes += Align(leaf.data->size(), 4);
                empty = empty || leaf.data->empty();
            }
        }
    }
    if (types.size() > 0xFFFF)
        return TooLarge("more than 65535 types");

    std::uint64_t cursor = kDirectoryHeader + kDirectoryEntry * types.size();
    for (const auto& [type, nameMap] : types) {
        layout.nameDirs.push_back(cursor);
        cursor += kDirectoryHeader + kDirectoryEntry * nameMap.size();
    }
    for (const auto& [type, nameMap] : types) {
        for (const auto& [name, languages] : nameMap) {
            layout.languageDirs.push_back(cursor);
            cursor += kDirectoryHeader + kDirectoryEntry * languages.size();
        }
    }
    layout.dataEntries = cursor;
    layout.strings = cursor + kDataEntry * leaves;
    layout.data = Align(layout.strings + stringBytes, 4);
    // An empty resource's RVA must still fall inside the section, where
    // readers look it up, even when it is the last.
    layout.total = layout.data + dataBytes + (empty ? 4 : 0);
    if (layout.total >= kHighBit)
        return TooLarge("larger than 2 GiB");
    return layout;
}

class Cursor {
public:
    Cursor(std::vector<std::uint8_t>& out, std::uint64_t at) : out_(out), at_(at) {}
    void U16(std::uint16_t v) {
        StoreU16LE(&out_[at_], v);
        at_ += 2;
    }
    void U32(std::uint32_t v) {
        StoreU32LE(&out_[at_], v);
        at_ += 4;
    }
    void Bytes(const std::vector<std::uint8_t>& bytes) {
        std::copy(bytes.begin(), bytes.end(), out_.begin() + static_cast<std::ptrdiff_t>(at_));
        at_ += bytes.size();
    }
    void AlignTo(std::uint64_t alignment) { at_ = Align(at_, alignment); }
    std::uint32_t At() const { return static_cast<std::uint32_t>(at_); }

private:
    std::vector<std::uint8_t>& out_;
    std::uint64_t at_;
};

void DirectoryHeader(Cursor& c, std::size_t named, std::size_t total) {
    c.U32(0); // characteristics
    c.U32(0); // time stamp
    c.U16(4); // version 4.0
    c.U16(0);
    c.U16(static_cast<std::uint16_t>(named));
    c.U16(static_cast<std::uint16_t>(total - named));
}

template <typename Map> std::size_t NamedCount(const Map& map) {
    std::size_t count = 0;
    for (const auto& entry : map)
        count += entry.first.named ? 1 : 0;
    return count;
}

// Writes the key of an entry; a name goes to the string cursor.
void EntryKey(Cursor& dir, Cursor& strings, const ResKey& key) {
    if (!key.named) {
        dir.U32(key.id);
        return;
    }
    dir.U32(kHighBit | strings.At());
    strings.U16(static_cast<std::uint16_t>(key.name.size()));
    for (char16_t unit : key.name)
        strings.U16(static_cast<std::uint16_t>(unit));
}

} // namespace

Result<std::uint32_t> ResourceSectionSize(const ResourceTree& tree) {
    auto layout = Plan(tree);
    if (!layout)
        return std::move(layout.error());
    return static_cast<std::uint32_t>(layout->total);
}

Result<std::vector<std::uint8_t>> BuildResourceSection(const ResourceTree& tree,
                                                       std::uint32_t sectionRva) {
    auto layout = Plan(tree);
    if (!layout)
        return std::move(layout.error());
    if (layout->total > std::numeric_limits<std::uint32_t>::max() - sectionRva)
        return TooLarge("runs past the end of the address space");
    std::vector<std::uint8_t> out(layout->total, 0);

    // Pass two: three cursors, every offset known from pass one.
    const TypeMap& types = tree.Types();
    Cursor dir(out, 0);
    Cursor strings(out, layout->strings);
    Cursor data(out, layout->data);
    Cursor dataEntries(out, layout->dataEntries);

    DirectoryHeader(dir, NamedCount(types), types.size());
    std::size_t typeIndex = 0;
    for (const auto& [type, names] : types) {
        EntryKey(dir, strings, type);
        dir.U32(kHighBit | static_cast<std::uint32_t>(layout->nameDirs[typeIndex++]));
    }
    std::size_t nameIndex = 0;
    for (const auto& [type, names] : types) {
        DirectoryHeader(dir, NamedCount(names), names.size());
        for (const auto& [name, languages] : names) {
            EntryKey(dir, strings, name);
            dir.U32(kHighBit | static_cast<std::uint32_t>(layout->languageDirs[nameIndex++]));
        }
    }
    for (const auto& [type, names] : types) {
        for (const auto& [name, languages] : names) {
            DirectoryHeader(dir, 0, languages.size());
            for (const auto& [language, leaf] : languages) {
                dir.U32(language);
                dir.U32(dataEntries.At());
                dataEntries.U32(sectionRva + data.At());
                dataEntries.U32(static_cast<std::uint32_t>(leaf.data->size()));
                dataEntries.U32(leaf.codePage);
                dataEntries.U32(0);
                data.Bytes(*leaf.data);
                data.AlignTo(4);
            }
        }
    }
    return out;
}

} // namespace tervane::update
