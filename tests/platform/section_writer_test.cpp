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

// The size a transaction checks comes from the tree's running tally; after
// every change it must be the total that the full plan arrives at.
TEST(SectionWriter, RunningSizeMatchesThePlanAfterEveryChange) {
    using Step = std::function<void(ResourceTree&)>;
    auto set = [](ResKey type, ResKey name, WORD language, std::vector<std::uint8_t> bytes) {
        return Step([=](ResourceTree& t) { t.Set(type, name, language, MakeBlob(bytes)); });
    };
    auto remove = [](ResKey type, ResKey name, WORD language) {
        return Step([=](ResourceTree& t) { t.Remove(type, name, language); });
    };
    const ResKey blob = ResKey::Name(u"BLOB"), note = ResKey::Name(u"NOTE");
    const ResKey six = ResKey::Id(6), one = ResKey::Id(1);
    const std::pair<const char*, Step> steps[] = {
        {"a numbered leaf", set(six, one, 0x409, {1, 2, 3})},
        {"a second language", set(six, one, 0x407, {1})},
        {"a named type and name", set(blob, note, 0, {1, 2, 3, 4, 5})},
        {"replaced by a longer blob", set(six, one, 0x409, {1, 2, 3, 4, 5, 6, 7, 8, 9})},
        {"replaced by an empty blob", set(six, one, 0x407, {})},
        {"a second empty blob", set(blob, one, 0, {})},
        {"one empty blob gone", remove(blob, one, 0)},
        {"an empty blob filled", set(six, one, 0x407, {7})},
        {"an absent leaf removed", remove(six, one, 0x40C)},
        {"an absent type removed", remove(ResKey::Id(99), one, 0)},
        {"inserted over a leaf that is there",
         Step([](ResourceTree& t) { t.Insert(ResKey::Id(6), ResKey::Id(1), 0x409, {}); })},
        {"a named name's last leaf", remove(blob, note, 0)},
        {"a name of another type", set(ResKey::Id(4), note, 0x409, {1, 2})},
        {"the last leaf of a type", remove(ResKey::Id(4), note, 0x409)},
        {"a copy of the tree", Step([](ResourceTree& t) { t = ResourceTree(t); })},
        {"cleared", Step([](ResourceTree& t) { t.Clear(); })},
        {"after the clear", set(blob, ResKey::Name(u"ODD"), 0, {1})},
    };
    ResourceTree tree;
    for (const auto& [what, step] : steps) {
        step(tree);
        auto plan = PlanResourceSection(tree);
        auto size = ResourceSectionSize(tree);
        ASSERT_TRUE(plan && size) << what;
        EXPECT_EQ(*size, plan->total) << what;
    }
}

// One type with more names than its directory can count fails as the plan
// does, and fits again when one is gone.
TEST(SectionWriter, RunningSizeOfACrowdedDirectory) {
    ResourceTree tree;
    const Blob data = MakeBlob({1});
    for (std::uint32_t id = 0; id < 0xFFFF; ++id)
        tree.Set(ResKey::Id(6), ResKey::Id(static_cast<WORD>(id)), 0, data);
    ASSERT_TRUE(ResourceSectionSize(tree));
    tree.Set(ResKey::Id(6), ResKey::Name(u"ONE_MORE"), 0, data);
    auto crowded = ResourceSectionSize(tree);
    ASSERT_FALSE(crowded);
    EXPECT_NE(crowded.error().context.find("more than 65535 names"), std::string::npos);
    tree.Remove(ResKey::Id(6), ResKey::Id(0), 0);
    auto size = ResourceSectionSize(tree);
    ASSERT_TRUE(size);
    EXPECT_EQ(*size, PlanResourceSection(tree)->total);
}

} // namespace
} // namespace tervane::update
