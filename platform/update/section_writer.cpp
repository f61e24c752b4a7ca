#include "platform/update/section_writer.h"

#include <algorithm>
#include <limits>

#include "platform/byte_reader.h"
#include "platform/update/narrowing.h"
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

} // namespace

// Sizes are counted in 64 bits and checked once against the 31 bits that an
// entry's offset can hold.
Result<SectionPlan> PlanResourceSection(const ResourceTree& tree) {
    const TypeMap& types = tree.Types();
    SectionPlan layout;
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
    layout.stringsEnd = layout.strings + stringBytes;
    layout.data = Align(layout.stringsEnd, 4);
    layout.dataEnd = layout.data + dataBytes;
    // An empty resource's RVA must still fall inside the section, where
    // readers look it up, even when it is the last.
    layout.total = layout.dataEnd + (empty ? 4 : 0);
    if (layout.total >= kHighBit)
        return TooLarge("larger than 2 GiB");
    return layout;
}

namespace {

// Writes one region of the section, [begin, end) as the plan gave it. A write
// that would cross the end is not done: it is a fault of the plan.
class Cursor {
public:
    Cursor(std::vector<std::uint8_t>& out, std::uint64_t begin, std::uint64_t end,
           const char* region, Narrowing& faults)
        : out_(out), at_(begin), end_(std::min<std::uint64_t>(end, out.size())), region_(region),
          faults_(faults) {
        if (begin > end_)
            Overrun(0);
    }
    void U16(std::uint16_t v) {
        if (Room(2))
            StoreU16LE(&out_[at_], v);
        at_ += 2;
    }
    void U32(std::uint32_t v) {
        if (Room(4))
            StoreU32LE(&out_[at_], v);
        at_ += 4;
    }
    void Bytes(const std::vector<std::uint8_t>& bytes) {
        if (Room(bytes.size()))
            std::copy(bytes.begin(), bytes.end(), out_.begin() + static_cast<std::ptrdiff_t>(at_));
        at_ += bytes.size();
    }
    void AlignTo(std::uint64_t alignment) {
        std::uint64_t aligned = Align(at_, alignment);
        if (Room(aligned - at_))
            at_ = aligned;
    }
    // An offset into the section, as an entry's field holds it.
    std::uint32_t At() { return faults_.U31(at_, region_); }
    // Where pass one said this region ends, this one must have ended.
    void ExpectEnd(std::uint64_t planned) {
        if (!overrun_ && at_ != planned)
            faults_.Fault(std::string(region_) + " ended at " + std::to_string(at_) +
                          ", planned to end at " + std::to_string(planned));
    }

private:
    bool Room(std::uint64_t bytes) {
        if (!overrun_ && at_ <= end_ && bytes <= end_ - at_)
            return true;
        Overrun(bytes);
        return false;
    }
    void Overrun(std::uint64_t bytes) {
        if (!overrun_)
            faults_.Fault(std::string(region_) + ": " + std::to_string(bytes) + " bytes at " +
                          std::to_string(at_) + " cross its planned end " + std::to_string(end_));
        overrun_ = true;
    }

    std::vector<std::uint8_t>& out_;
    std::uint64_t at_;
    std::uint64_t end_;
    const char* region_;
    Narrowing& faults_;
    bool overrun_ = false;
};

void DirectoryHeader(Cursor& c, Narrowing& narrow, std::size_t named, std::size_t total) {
    c.U32(0); // characteristics
    c.U32(0); // time stamp
    c.U16(4); // version 4.0
    c.U16(0);
    c.U16(narrow.U16(named, "named entry count"));
    c.U16(narrow.U16(total - named, "numbered entry count"));
}

template <typename Map> std::size_t NamedCount(const Map& map) {
    std::size_t count = 0;
    for (const auto& entry : map)
        count += entry.first.named ? 1 : 0;
    return count;
}

// Writes the key of an entry; a name goes to the string cursor.
void EntryKey(Cursor& dir, Cursor& strings, Narrowing& narrow, const ResKey& key) {
    if (!key.named) {
        dir.U32(key.id);
        return;
    }
    dir.U32(kHighBit | strings.At());
    strings.U16(narrow.U16(key.name.size(), "name length"));
    for (char16_t unit : key.name)
        strings.U16(static_cast<std::uint16_t>(unit));
}

} // namespace

// The plan's total from the tree's running tally, without a walk: the
// directory tables, the data entries, the names, and then the data.
Result<std::uint32_t> ResourceSectionSize(const ResourceTree& tree) {
    const SectionTally& tally = tree.Tally();
    const std::uint64_t types = tree.Types().size();
    if (tally.crowded != 0 || types > 0xFFFF) {
        // The plan names the directory that is too large.
        auto layout = PlanResourceSection(tree);
        if (!layout)
            return std::move(layout.error());
    }
    const std::uint64_t tables = kDirectoryHeader * (1 + types + tally.names) +
                                 kDirectoryEntry * (types + tally.names + tally.leaves);
    const std::uint64_t strings = tables + kDataEntry * tally.leaves;
    const std::uint64_t total =
        Align(strings + tally.stringBytes, 4) + tally.dataBytes + (tally.emptyLeaves ? 4 : 0);
    if (total >= kHighBit)
        return TooLarge("larger than 2 GiB");
    return static_cast<std::uint32_t>(total);
}

Result<std::vector<std::uint8_t>> BuildResourceSection(const ResourceTree& tree,
                                                       std::uint32_t sectionRva) {
    auto layout = PlanResourceSection(tree);
    if (!layout)
        return std::move(layout.error());
    return WriteResourceSection(tree, *layout, sectionRva);
}

Result<std::vector<std::uint8_t>>
WriteResourceSection(const ResourceTree& tree, const SectionPlan& plan, std::uint32_t sectionRva) {
    if (plan.total > std::numeric_limits<std::uint32_t>::max() - sectionRva)
        return TooLarge("runs past the end of the address space");
    const TypeMap& types = tree.Types();
    std::size_t nameCount = 0;
    for (const auto& [type, names] : types)
        nameCount += names.size();
    if (plan.nameDirs.size() != types.size() || plan.languageDirs.size() != nameCount)
        return Error{ERROR_INVALID_DATA, "resource section: the plan is for another tree"};
    std::vector<std::uint8_t> out(plan.total, 0);

    // Pass two: a cursor for each region, every offset known from pass one.
    Narrowing narrow("resource section");
    Cursor dir(out, 0, plan.dataEntries, "directories", narrow);
    Cursor dataEntries(out, plan.dataEntries, plan.strings, "data entries", narrow);
    Cursor strings(out, plan.strings, plan.stringsEnd, "names", narrow);
    Cursor data(out, plan.data, plan.dataEnd, "data", narrow);

    DirectoryHeader(dir, narrow, NamedCount(types), types.size());
    std::size_t typeIndex = 0;
    for (const auto& [type, names] : types) {
        EntryKey(dir, strings, narrow, type);
        dir.U32(kHighBit | narrow.U31(plan.nameDirs[typeIndex++], "name directory offset"));
    }
    std::size_t nameIndex = 0;
    for (const auto& [type, names] : types) {
        DirectoryHeader(dir, narrow, NamedCount(names), names.size());
        for (const auto& [name, languages] : names) {
            EntryKey(dir, strings, narrow, name);
            dir.U32(kHighBit |
                    narrow.U31(plan.languageDirs[nameIndex++], "language directory offset"));
        }
    }
    for (const auto& [type, names] : types) {
        for (const auto& [name, languages] : names) {
            DirectoryHeader(dir, narrow, 0, languages.size());
            for (const auto& [language, leaf] : languages) {
                dir.U32(language);
                dir.U32(dataEntries.At());
                dataEntries.U32(narrow.U32(std::uint64_t{sectionRva} + data.At(), "data RVA"));
                dataEntries.U32(narrow.U32(leaf.data->size(), "data size"));
                dataEntries.U32(leaf.codePage);
                dataEntries.U32(0);
                data.Bytes(*leaf.data);
                data.AlignTo(4);
            }
        }
    }
    dir.ExpectEnd(plan.dataEntries);
    dataEntries.ExpectEnd(plan.strings);
    strings.ExpectEnd(plan.stringsEnd);
    data.ExpectEnd(plan.dataEnd);
    if (narrow.FirstFault())
        return *narrow.FirstFault();
    return out;
}

} // namespace tervane::update
