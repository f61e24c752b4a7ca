#pragma once
// The resources of one image as the updater holds them: type, name and
// language, each directory kept in the order that Win32's lookups rely on.
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/result.h"
#include "platform/win32/res_name.h"
#include "platform/win32/types.h"

namespace tervane::update {

// A directory entry's identifier: a UTF-16 name or a 16-bit number.
struct ResKey {
    bool named = false;
    std::u16string name;
    WORD id = 0;

    static ResKey Id(WORD id) { return ResKey{false, {}, id}; }
    static ResKey Name(std::u16string name) { return ResKey{true, std::move(name), 0}; }
    bool operator==(const ResKey&) const = default;
};

// Named entries first, names by UTF-16 code unit, numbers as unsigned 16-bit:
// the loader binary-searches each half in this order.
struct ResKeyLess {
    bool operator()(const ResKey& a, const ResKey& b) const {
        if (a.named != b.named)
            return a.named;
        return a.named ? a.name < b.name : a.id < b.id;
    }
};

// Resource bytes are shared, never changed, so that copying a tree between
// transactions costs no copy of the data.
using Blob = std::shared_ptr<const std::vector<std::uint8_t>>;

struct ResourceLeaf {
    Blob data;
    std::uint32_t codePage = 0;
};

using LanguageMap = std::map<WORD, ResourceLeaf>;
using NameMap = std::map<ResKey, LanguageMap, ResKeyLess>;
using TypeMap = std::map<ResKey, NameMap, ResKeyLess>;

// What the size of the tree's section follows from, kept up to date by every
// change, so that a transaction learns whether its result fits without a
// walk of the whole tree.
struct SectionTally {
    std::uint64_t names = 0;  // language directories
    std::uint64_t leaves = 0; // data entries
    std::uint64_t stringBytes = 0;
    std::uint64_t dataBytes = 0; // each blob aligned to 4
    std::uint64_t emptyLeaves = 0;
    std::uint64_t crowded = 0; // directories with more entries than 16 bits count
    bool operator==(const SectionTally&) const = default;
};

class ResourceTree {
public:
    // Replaces or adds; a new leaf gets code page 0, a replaced one keeps its own.
    void Set(const ResKey& type, const ResKey& name, WORD language, Blob data);
    // Inserts as read from a file, code page included.
    void Insert(const ResKey& type, const ResKey& name, WORD language, ResourceLeaf leaf);
    // Removes the leaf and any directory left empty; false when it was absent.
    bool Remove(const ResKey& type, const ResKey& name, WORD language);
    const ResourceLeaf* Find(const ResKey& type, const ResKey& name, WORD language) const;
    void Clear() {
        types_.clear();
        tally_ = {};
    }

    const TypeMap& Types() const { return types_; }
    const SectionTally& Tally() const { return tally_; }
    std::size_t LeafCount() const;
    bool operator==(const ResourceTree& other) const;

private:
    LanguageMap& Languages(const ResKey& type, const ResKey& name);
    void Count(const ResourceLeaf& leaf, int sign);

    TypeMap types_;
    SectionTally tally_;
};

// The key under which Win32's update functions store a type or name: "#123"
// is the number 123, names are upper-cased. Fails with ERROR_INVALID_PARAMETER
// for an empty name or one longer than a directory string can hold.
Result<ResKey> KeyFromResName(const ResName& name);
// The narrow form, for messages and for the resource reading calls.
ResName ResNameFromKey(const ResKey& key);

Blob MakeBlob(std::vector<std::uint8_t> bytes);

} // namespace tervane::update
