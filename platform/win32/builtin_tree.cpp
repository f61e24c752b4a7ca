#include "platform/win32/builtin_tree.h"

#include <map>

#include "platform/pe/resource_name_text.h"

namespace tervane {

pe::ResourceTree BuildBuiltinTree(const std::vector<module_resources::Resource>& table,
                                  std::vector<std::span<const std::uint8_t>>& data) {
    auto toId = [](const module_resources::Id& id) {
        return id.name.empty() ? pe::ResourceId(id.ordinal)
                               : pe::ResourceId(pe::UpcaseName(id.name));
    };
    std::map<pe::ResourceId, std::map<pe::ResourceId, std::map<std::uint16_t, std::size_t>>> sorted;
    for (const auto& resource : table) {
        data.push_back(resource.bytes);
        sorted[toId(resource.type)][toId(resource.name)][resource.language] = data.size() - 1;
    }
    auto count = [](const auto& map, pe::ResourceDirectoryHeader& header) {
        for (const auto& [id, _] : map)
            ++(id.IsName() ? header.numberOfNamedEntries : header.numberOfIdEntries);
    };
    pe::ResourceTree tree;
    tree.header.majorVersion = 4;
    count(sorted, tree.header);
    for (const auto& [typeId, names] : sorted) {
        pe::ResourceType& type = tree.types.emplace_back();
        type.id = typeId;
        count(names, type.header);
        for (const auto& [nameId, languages] : names) {
            pe::ResourceName& name = type.names.emplace_back();
            name.id = nameId;
            name.header.numberOfIdEntries = static_cast<std::uint16_t>(languages.size());
            for (const auto& [language, index] : languages) {
                auto size = static_cast<std::uint32_t>(data[index].size());
                name.languages.push_back(
                    {language, {static_cast<std::uint32_t>(index), size, 0, 0}});
            }
        }
    }
    return tree;
}

} // namespace tervane
