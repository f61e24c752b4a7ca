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

TEST(TagTables, SuccessorTableIsClosedAndKeepsTheDocumentsOrder) {
    const TagTable table = BuildSuccessorTable();
    // Every name that may follow has a row of its own, but the document's end.
    for (const auto& [tag, successors] : table)
        for (const auto& next : successors)
            EXPECT_TRUE(next == "/resources" || table.count(next)) << tag << " -> " << next;
    EXPECT_EQ(table.count("edit"), 0u);
    struct Step {
        const char* tag;
        const char* next;
        bool allowed;
    };
    const Step steps[] = {
        {"/comments", "/versioninfo", true},
        {"/item", "/combobox", true},
        {"/stringtable", "menus", false},
        {"/legaltrademarks", "comments", false},
        {"items", "edit", false},
    };
    for (const Step& s : steps)
        EXPECT_EQ(Allows(table, s.tag, s.next), s.allowed) << s.tag << " -> " << s.next;

    const TagTable groups = BuildGroupTable();
    EXPECT_TRUE(Allows(groups, "menus", "/separator"));
    EXPECT_FALSE(Allows(groups, "dialogs", "/dialog"));
}

} // namespace
} // namespace tervane
