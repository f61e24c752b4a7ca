#include "stream/tag_tables.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace tervane {
namespace {

TEST(TagTables, SuccessorTableIsClosedAndKeepsTheDocumentsOrder) {
    const TagTable table = BuildSuccessorTable();
    // Every name that may follow has a row of its own, but the document's end.
    for (const auto& [tag, successors] : table)
        for (const auto& next : successors)
            EXPECT_TRUE(next == "/resources" || table.count(next)) << tag << " -> " << next;
    // Version values keep their order: none comes back after a later one.
    const auto& afterTrademarks = table.at("/legaltrademarks");
    EXPECT_EQ(std::count(afterTrademarks.begin(), afterTrademarks.end(), "comments"), 0);
    EXPECT_EQ(table.count("edit"), 0u);
    const TagTable groupTable = BuildGroupTable();
    const auto& groups = groupTable.at("menus");
    EXPECT_EQ(std::count(groups.begin(), groups.end(), "/separator"), 1);
}

} // namespace
} // namespace tervane
