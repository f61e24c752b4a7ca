// A label parser used for one label after another answers as a new one
// would, also after a label that raised inside the shortcut's list.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "label/grammars/label_parser.h"
#include "platform/pe/resource_name_text.h"
#include "tests/label/label_token_print.h"

namespace tervane {
namespace {

struct Label {
    LabelKind kind;
    std::u16string text;
};

TEST(EngineReuse, OneLabelParserForManyLabelsGivesEachLabelsOwnTokens) {
    const std::vector<Label> labels = {
        {LabelKind::String, u"50% off "},
        {LabelKind::Menu, u"&Open...\\tCtrl+O"},
        {LabelKind::Menu, u"Go\\tkey\nmore"}, // raises inside the shortcut list
        {LabelKind::Dialog, u"%d%% &Done\\r\\n"},
        {LabelKind::String, u"%I64d and a long text behind it "},
        {LabelKind::String, u""},
    };
    CLabelParser parser;
    LabelTokens kept;
    for (const Label& label : labels) {
        const LabelTokenList expected = ParseLabel(label.kind, label.text);
        const std::string name = pe::Utf16ToUtf8(label.text);

        LabelTokenList list;
        ASSERT_EQ(parser.Initialise(label.kind), 0);
        parser.Parse(label.text, list);
        EXPECT_EQ(list, expected) << name;

        kept.clear();
        ASSERT_EQ(parser.Initialise(label.kind), 0);
        parser.Parse(label.text, kept);
        EXPECT_EQ(LabelTokenList(kept.begin(), kept.end()), expected) << name;
    }
}

} // namespace
} // namespace tervane
