#include "platform/win32/builtin_tree.h"

#include <gtest/gtest.h>

namespace tervane {
namespace {

std::string Text(const pe::ResourceId& id) {
    return id.IsName() ? std::string(id.Name().begin(), id.Name().end())
                       : std::to_string(id.Ordinal());
}

TEST(BuiltinTree, LaidOutAsACompilerLaysOutADirectory) {
    static const std::uint8_t bytes[3] = {1, 2, 3};
    using module_resources::Id;
    const std::vector<module_resources::Resource> table = {
        {Id{u"SSYaccTable"}, Id{u"MENURESPARSE"}, 0, {bytes, 1}},
        {Id{{}, 16}, Id{{}, 1}, 0x409, {bytes, 2}},
        {Id{u"SSLEXTABLE"}, Id{u"stringresparse"}, 0, {bytes, 3}},
        {Id{u"SSLEXTABLE"}, Id{u"DIALOGRESPARSE"}, 0, {bytes, 1}},
        {Id{{}, 6}, Id{{}, 7}, 0x409, {bytes, 2}},
        {Id{{}, 6}, Id{{}, 7}, 0x407, {bytes, 3}},
    };
    std::vector<std::span<const std::uint8_t>> data;
    pe::ResourceTree tree = BuildBuiltinTree(table, data);
    std::vector<std::string> seen;
    for (const auto& type : tree.types)
        for (const auto& name : type.names)
            for (const auto& language : name.languages)
                seen.push_back(Text(type.id) + "/" + Text(name.id) + "/" +
                               std::to_string(language.language) + "/" +
                               std::to_string(data.at(language.data.rva).size()));
    const std::vector<std::string> expected = {"SSLEXTABLE/DIALOGRESPARSE/0/1",
                                               "SSLEXTABLE/STRINGRESPARSE/0/3",
                                               "SSYACCTABLE/MENURESPARSE/0/1",
                                               "6/7/1031/3",
                                               "6/7/1033/2",
                                               "16/1/1033/2"};
    EXPECT_EQ(seen, expected);
    EXPECT_EQ(tree.header.numberOfNamedEntries, 2);
    EXPECT_EQ(tree.header.numberOfIdEntries, 2);
    EXPECT_EQ(tree.types[0].header.numberOfNamedEntries, 2);
    EXPECT_EQ(tree.types[2].names[0].header.numberOfIdEntries, 2);
    EXPECT_EQ(tree.FirstDamage(), nullptr);
}

} // namespace
} // namespace tervane
