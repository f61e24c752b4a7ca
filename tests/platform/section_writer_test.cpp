// The second pass of the resource section writer against a plan made wrong on
// purpose: each fault is caught where it happens, and nothing is written.
#include <functional>
#include <gtest/gtest.h>

#include "platform/update/section_writer.h"
#include "platform/win32/last_error.h"

namespace tervane::update {
namespace {

// A named type with a named and a numbered entry, one of them empty.
ResourceTree SampleTree() {
    ResourceTree tree;
    tree.Set(ResKey::Name(u"BLOB"), ResKey::Name(u"NOTE"), 0x409, MakeBlob({1, 2, 3}));
    tree.Set(ResKey::Name(u"BLOB"), ResKey::Id(7), 0x407, MakeBlob({}));
    tree.Set(ResKey::Id(6), ResKey::Id(1), 0x409, MakeBlob({4, 5, 6, 7, 8}));
    return tree;
}

TEST(SectionWriter, WrongPlansAreCaughtWhereTheyGoWrong) {
    struct Case {
        const char* what;
        std::function<void(SectionPlan&)> spoil;
        std::string fault;
    };
    const Case cases[] = {
        {"directories planned one entry short", [](SectionPlan& p) { p.dataEntries -= 8; },
         "directories: 4 bytes at"},
        {"names planned to start late", [](SectionPlan& p) { p.strings += 2; },
         "names: 2 bytes at"},
        {"names planned to end late", [](SectionPlan& p) { p.stringsEnd += 2; }, "names ended at"},
        {"data planned one word short", [](SectionPlan& p) { p.dataEnd -= 4; },
         "data: 5 bytes at 232 cross its planned end 236"},
        {"data planned one word long", [](SectionPlan& p) { p.dataEnd += 4; }, "data ended at"},
        {"section smaller than its data", [](SectionPlan& p) { p.total = p.dataEnd - 4; },
         "cross its planned end"},
        {"an offset with the flag bit", [](SectionPlan& p) { p.languageDirs.back() = 0x80000000; },
         "language directory offset of 2147483648 does not fit in its field"},
        {"a plan for another tree", [](SectionPlan& p) { p.nameDirs.pop_back(); },
         "the plan is for another tree"},
    };
    const ResourceTree tree = SampleTree();
    auto plan = PlanResourceSection(tree);
    ASSERT_TRUE(plan);
    auto right = WriteResourceSection(tree, *plan, 0x3000);
    ASSERT_TRUE(right) << right.error().context;
    EXPECT_EQ(right->size(), plan->total);
    for (const Case& c : cases) {
        SectionPlan wrong = *plan;
        c.spoil(wrong);
        auto written = WriteResourceSection(tree, wrong, 0x3000);
        ASSERT_FALSE(written) << c.what;
        EXPECT_EQ(written.error().code, ERROR_INVALID_DATA) << c.what;
        EXPECT_NE(written.error().context.find(c.fault), std::string::npos)
            << c.what << ": " << written.error().context;
    }
}

// A name read from a file can be longer than its 16-bit length field: the
// plan holds it, the narrowing refuses it.
TEST(SectionWriter, NameLongerThanItsLengthField) {
    for (std::size_t length : {std::size_t{0xFFFF}, std::size_t{0x10000}}) {
        ResourceTree tree;
        tree.Set(ResKey::Name(std::u16string(length, u'A')), ResKey::Id(1), 0, MakeBlob({1}));
        auto written = BuildResourceSection(tree, 0x1000);
        EXPECT_EQ(static_cast<bool>(written), length == 0xFFFF) << length;
        if (!written) {
            EXPECT_NE(written.error().context.find("name length of 65536"), std::string::npos)
                << written.error().context;
        }
    }
}

} // namespace
} // namespace tervane::update
