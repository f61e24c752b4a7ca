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
#include "platform/com/component.h"
#include "platform/com/dispatch.h"
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

// Takes every event and counts those that carry a tag or a text.
class CountingSink : public ComObjectRoot, public DispatchWithoutTypeInfo<IEvents> {
public:
    static InterfaceMap<CountingSink> Interfaces() {
        static const InterfaceEntry<CountingSink> map[] = {
            Entry<CountingSink, IEvents>(), Entry<CountingSink, IDispatch, IEvents>()};
        return map;
    }
    HRESULT raw_Property(IProperty*) override { return S_OK; }
    HRESULT raw_StartOfInput(IDocumentInfo*) override { return S_OK; }
    HRESULT raw_EndOfInput() override { return S_OK; }
    HRESULT raw_StartOfSegment(IUnknown*) override { return S_OK; }
    HRESULT raw_EndOfSegment() override { return S_OK; }
    HRESULT raw_Text(IText*) override { return ++events, S_OK; }
    HRESULT raw_Tag(ITag*) override { return ++events, S_OK; }
    long events = 0;
};

// The backward conversion reads the whole model after extracting without
// emission; only an emitting run may free each batch once it is sent, and
// then every resource stays on the list.
TEST(ResourceLookup, OnlyAnEmittingRunFreesWhatItSent) {
    struct Case {
        long emit;
        long batch;
        bool kept;
    };
    const Case cases[] = {{0, 2, true}, {0, 1, true}, {1, 4, false}, {1, 1, false}};
    for (const char* fixture : {"fwd_dialogs", "fwd_menus", "sample"}) {
        for (const std::string& path : test::FixtureImages(fixture)) {
            const Labels expected = Extract(path, [](auto&) {});
            for (const Case& c : cases) {
                SCOPED_TRACE(path + " emit " + std::to_string(c.emit) + " batch " +
                             std::to_string(c.batch));
                ComPtr<ComObject<CountingSink>> sink;
                ComObject<CountingSink>::Create(sink.Receive());
                CResourceParserImpl engine;
                ASSERT_EQ(engine.InitialiseParser(std::u16string(path.begin(), path.end())), 0);
                engine.EnumerateResources();
                engine.SetSink(sink.get());
                engine.SetBatchSize(c.batch);
                const std::size_t listed = engine.Resources().size();
                ASSERT_EQ(engine.ExtractResources(c.emit), 0);
                EXPECT_EQ(engine.Resources().size(), listed);
                std::size_t withText = 0;
                for (const auto& resource : engine.Resources()) {
                    const std::u16string labels = LabelsOf(*resource);
                    withText += !labels.empty();
                    if (c.kept) {
                        EXPECT_EQ(labels,
                                  expected.at({CResourceParserImpl::GetResourceType(*resource),
                                               resource->identifierText, resource->language}));
                    }
                }
                EXPECT_EQ(withText == 0, !c.kept);
            }
        }
    }
}

} // namespace
} // namespace tervane
