#include "stream/tag_tables.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace tervane {
namespace {

bool Allows(const TagTable& table, const std::string& tag, const std::string& next) {
    auto row = table.find(tag);
    return row != table.end() &&
           std::find(row->second.begin(), row->second.end(), next) != row->second.end();
}

TEST(TagTables, SuccessorTableIsClosed) {
    const TagTable table = BuildSuccessorTable();
    EXPECT_EQ(table.size(), 46u);
    // Every name that may follow has a row of its own, but the document's end.
    for (const auto& [tag, successors] : table)
        for (const auto& next : successors)
            EXPECT_TRUE(next == "/resources" || table.count(next)) << tag << " -> " << next;
    for (const char* absent : {"/resources", "edit", "listbox", "%s", "&"})
        EXPECT_EQ(table.count(absent), 0u) << absent;
}

TEST(TagTables, DocumentShapesTheFormatAllows) {
    const TagTable table = BuildSuccessorTable();
    struct Step {
        const char* tag;
        const char* next;
        bool allowed;
    };
    const Step steps[] = {
        {"resources", "stringtable", true},
        {"/stringtable", "/resources", true},
        {"/comments", "/resources", true},
        {"/comments", "/versioninfo", true},
        {"items", "item", true},
        {"/item", "/combobox", true},
        {"/stringtable", "menus", false},
        {"/dialogs", "menus", false},
        {"/legaltrademarks", "comments", false},
        {"items", "edit", false},
        {"separator", "separator", true},
        {"/shortcut", "/item", true},
    };
    for (const Step& s : steps)
        EXPECT_EQ(Allows(table, s.tag, s.next), s.allowed) << s.tag << " -> " << s.next;
}

TEST(TagTables, GroupTable) {
    const TagTable groups = BuildGroupTable();
    ASSERT_EQ(groups.size(), 4u);
    EXPECT_TRUE(Allows(groups, "menus", "/separator"));
    EXPECT_TRUE(Allows(groups, "dialogs", "item"));
    EXPECT_TRUE(Allows(groups, "menus", "item"));
    EXPECT_FALSE(Allows(groups, "dialogs", "/dialog"));
    EXPECT_EQ(groups.at("versioninfo").size(), 12u);
}

} // namespace
} // namespace tervane
