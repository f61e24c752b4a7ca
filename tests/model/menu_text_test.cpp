#include "model/menu_text.h"

#include <gtest/gtest.h>

#include "label/grammars/label_parser.h"
#include "tests/model/menu_images.h"

namespace tervane {
namespace {

TEST(MenuText, PiecesOfItemTexts) {
    const std::pair<std::u16string, std::string> cases[] = {
        {u"A&&B", "[A&B]"},
        // No printf placeholders in a menu: percent signs stay as they are.
        {u"100% %d %%", "[100% %d %%]"},
        {u"\tF1", "<shortcut>[F1]</shortcut>"},
        {u"Cut\t", "[Cut]<shortcut></shortcut>"},
        {u"Go\tCtrl++,B", "[Go]<shortcut>[Ctrl]{+}[+]{,}[B]</shortcut>"},
        {u"a+b,c", "[a+b,c]"},
        // Control characters become escapes, which the grammar takes for marks.
        {u"one\r\ntwo", "[one]{\\r}{\\n}[two]"},
        // A second tab belongs to the shortcut's text.
        {u"a\tb\tc", "[a]<shortcut>[b\\tc]</shortcut>"},
        {u"", ""},
    };
    CLabelParser parser;
    for (const auto& [text, spelt] : cases) {
        MenuItemRecord record;
        record.parser = &parser;
        AnalyseMenuText(record, text);
        std::vector<std::string> lines;
        test::Spell(record, 0, lines);
        EXPECT_EQ(lines, std::vector<std::string>{spelt}) << Narrow(text);
    }
}

} // namespace
} // namespace tervane
