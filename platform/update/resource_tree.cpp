#include "platform/update/resource_tree.h"

#include "platform/pe/resource_name_text.h"
#include "platform/win32/last_error.h"

namespace tervane::update {

namespace {

constexpr std::size_t kMaxEntries = 0xFFFF;

std::uint64_t StringBytes(const ResKey& key) {
    return key.named ? 2 + 2 * std::uint64_t{key.name.size()} : 0;
}

std::uint64_t Aligned4(std::size_t size) {
    return (std::uint64_t{size} + 3) / 4 * 4;
}

} // namespace

// Finds or makes the directories down to the name's languages.
LanguageMap& ResourceTree::Languages(const ResKey& type, const ResKey& name) {
    auto [t, newType] = types_.try_emplace(type);
    if (newType)
        tally_.stringBytes += StringBytes(type);
    auto [n, newName] = t->second.try_emplace(name);
    if (newName) {
        ++tally_.names;
        tally_.stringBytes += StringBytes(name);
        if (t->second.size() == kMaxEntries + 1)
            ++tally_.crowded;
    }
    return n->second;
}

void ResourceTree::Count(const ResourceLeaf& leaf, int sign) {
    const std::uint64_t bytes = leaf.data ? Aligned4(leaf.data->size()) : 0;
    const std::uint64_t empty = leaf.data && leaf.data->empty() ? 1 : 0;
    if (sign > 0) {
        tally_.dataBytes += bytes;
        tally_.emptyLeaves += empty;
    } else {
        tally_.dataBytes -= bytes;
        tally_.emptyLeaves -= empty;
    }
}

void ResourceTree::Set(const ResKey& type, const ResKey& name, WORD language, Blob data) {
    LanguageMap& languages = Languages(type, name);
    auto [l, added] = languages.try_emplace(language);
    if (added) {
        ++tally_.leaves;
        if (languages.size() == kMaxEntries + 1)
            ++tally_.crowded;
    } else {
        Count(l->second, -1);
    }
    l->second.data = std::move(data);
    Count(l->second, +1);
}

void ResourceTree::Insert(const ResKey& type, const ResKey& name, WORD language,
                          ResourceLeaf leaf) {
    LanguageMap& languages = Languages(type, name);
    auto [l, added] = languages.try_emplace(language, std::move(leaf));
    if (!added)
        return;
    ++tally_.leaves;
    if (languages.size() == kMaxEntries + 1)
        ++tally_.crowded;
    Count(l->second, +1);
}

bool ResourceTree::Remove(const ResKey& type, const ResKey& name, WORD language) {
    auto t = types_.find(type);
    if (t == types_.end())
        return false;
    auto n = t->second.find(name);
    if (n == t->second.end())
        return false;
    auto l = n->second.find(language);
    if (l == n->second.end())
        return false;
    Count(l->second, -1);
    --tally_.leaves;
    if (n->second.size() == kMaxEntries + 1)
        --tally_.crowded;
    n->second.erase(l);
    if (n->second.empty()) {
        --tally_.names;
        tally_.stringBytes -= StringBytes(name);
        if (t->second.size() == kMaxEntries + 1)
            --tally_.crowded;
        t->second.erase(n);
    }
    if (t->second.empty()) {
        tally_.stringBytes -= StringBytes(type);
        types_.erase(t);
    }
    return true;
}

const ResourceLeaf* ResourceTree::Find(const ResKey& type, const ResKey& name,
                                       WORD language) const {
    auto t = types_.find(type);
    if (t == types_.end())
        return nullptr;
    auto n = t->second.find(name);
    if (n == t->second.end())
        return nullptr;
    auto l = n->second.find(language);
    return l == n->second.end() ? nullptr : &l->second;
}

std::size_t ResourceTree::LeafCount() const {
    std::size_t count = 0;
    for (const auto& [type, names] : types_)
        for (const auto& [name, languages] : names)
            count += languages.size();
    return count;
}

bool ResourceTree::operator==(const ResourceTree& other) const {
    if (types_.size() != other.types_.size())
        return false;
    auto a = types_.begin();
    auto b = other.types_.begin();
    for (; a != types_.end(); ++a, ++b) {
        if (!(a->first == b->first) || a->second.size() != b->second.size())
            return false;
        auto na = a->second.begin();
        auto nb = b->second.begin();
        for (; na != a->second.end(); ++na, ++nb) {
            if (!(na->first == nb->first) || na->second.size() != nb->second.size())
                return false;
            auto la = na->second.begin();
            auto lb = nb->second.begin();
            for (; la != na->second.end(); ++la, ++lb) {
                if (la->first != lb->first || la->second.codePage != lb->second.codePage ||
                    (la->second.data != lb->second.data && *la->second.data != *lb->second.data))
                    return false;
            }
        }
    }
    return true;
}

Result<ResKey> KeyFromResName(const ResName& name) {
    if (name.IsOrdinal())
        return ResKey::Id(name.Ordinal());
    ResName parsed = ResName::FromText(name.Name());
    if (parsed.IsOrdinal())
        return ResKey::Id(parsed.Ordinal());
    if (name.Name().empty())
        return Error{ERROR_INVALID_PARAMETER, "empty resource name"};
    std::u16string wide = pe::UpcaseName(pe::Utf8ToUtf16(name.Name()));
    // A directory string is counted in 16 bits.
    if (wide.size() > 0xFFFF)
        return Error{ERROR_INVALID_PARAMETER, "resource name longer than 65535 characters"};
    return ResKey::Name(std::move(wide));
}

ResName ResNameFromKey(const ResKey& key) {
    return key.named ? ResName(pe::Utf16ToUtf8(key.name)) : ResName(key.id);
}

Blob MakeBlob(std::vector<std::uint8_t> bytes) {
    return std::make_shared<const std::vector<std::uint8_t>>(std::move(bytes));
}

} // namespace tervane::update
