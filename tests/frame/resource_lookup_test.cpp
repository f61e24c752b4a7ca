#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <string>
#include <tuple>
#include <utility>

#include "frame/resource_parser_impl.h"
#include "model/dialog_resource.h"
#include "model/menu_resource.h"
#include "model/string_block.h"
#include "tests/support/fixtures.h"

namespace tervane {
namespace {

// Everything each resource gave, by its kind, identifier and language.
using Labels = std::map<std::tuple<WORD, std::string, WORD>, std::u16string>;

void AppendRecord(const MenuItemRecord& record, std::u16string& out) {
    out += JoinLabel(record.pieces);
    for (const MenuItemRecord& child : record.children)
        AppendRecord(child, out);
}

std::u16string LabelsOf(CResource& resource) {
    std::u16string out;
    if (auto* dialog = dynamic_cast<CDialogResource*>(&resource)) {
        for (const auto& item : dialog->dialogs)
            out += JoinLabel(item->pieces);
    } else if (auto* menu = dynamic_cast<CMenuResource*>(&resource)) {
        for (const MenuItemRecord& record : menu->items)
            AppendRecord(record, out);
    } else if (auto* block = dynamic_cast<CStringBlockResource*>(&resource)) {
        for (const PieceEntry& entry : block->entries)
            out += JoinLabel(entry);
    }
    return out;
}

template <typename Shuffle> Labels Extract(const std::string& path, Shuffle shuffle) {
    CResourceParserImpl engine;
    EXPECT_EQ(engine.InitialiseParser(std::u16string(path.begin(), path.end())), 0);
    engine.EnumerateResources();
    auto& resources = engine.Resources();
    shuffle(resources);
    EXPECT_EQ(engine.ExtractResources(0), 0);
    Labels labels;
    for (const auto& resource : resources)
        labels[{CResourceParserImpl::GetResourceType(*resource), resource->identifierText,
                resource->language}] = LabelsOf(*resource);
    return labels;
}

// The extraction reuses what the enumeration found at each place of the
// list: a list changed in between must still give each resource its own bytes.
TEST(ResourceLookup, EachResourceReadsItsOwnBytesWhateverTheOrder) {
    using List = std::vector<std::unique_ptr<CResource>>;
    struct Case {
        const char* what;
        void (*shuffle)(List&);
    };
    const Case cases[] = {
        {"reversed", [](List& list) { std::reverse(list.begin(), list.end()); }},
        {"first dropped", [](List& list) { list.erase(list.begin()); }},
    };
    for (const char* fixture : {"fwd_dialogs", "fwd_menus", "fwd_strings", "sample"}) {
        for (const std::string& path : test::FixtureImages(fixture)) {
            const Labels expected = Extract(path, [](List&) {});
            ASSERT_GT(expected.size(), 1u) << path;
            for (const Case& c : cases) {
                SCOPED_TRACE(path + ": " + c.what);
                const Labels labels = Extract(path, c.shuffle);
                EXPECT_EQ(labels.size() + (std::string(c.what) == "first dropped"),
                          expected.size());
                for (const auto& [key, text] : labels) {
                    ASSERT_TRUE(expected.count(key));
                    EXPECT_EQ(text, expected.at(key)) << std::get<1>(key);
                }
            }
        }
    }
}

} // namespace
} // namespace tervane
