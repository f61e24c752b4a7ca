#include "model/menu_text.h"

#include <gtest/gtest.h>

#include "label/grammars/label_parser.h"
#include "tests/model/menu_images.h"

namespace tervane {
namespace {

TEST(MenuText, PiecesOfItemTexts) {
    struct Case {
        std::u16string text;
        std::string spelt;
    };
    const Case cases[] = {
        {u"E&xit\tCtrl+Q", "[E]{&}[xit]<shortcut>[Ctrl]{+}[Q]</shortcut>"},
        {u"Save &As...", "[Save ]{&}[As...]"},
        {u"A&&B", "[A&B]"},
        // No printf placeholders in a menu: percent signs stay as they are.
        {u"100% %d %%", "[100% %d %%]"},
        {u"\tF1", "<shortcut>[F1]</shortcut>"},
        {u"Cut\t", "[Cut]<shortcut></shortcut>"},
        {u"Next\tCtrl++", "[Next]<shortcut>[Ctrl]{+}[+]</shortcut>"},
        {u"Go\tCtrl+Shift+A,B", "[Go]<shortcut>[Ctrl]{+}[Shift]{+}[A]{,}[B]</shortcut>"},
        {u"a+b,c", "[a+b,c]"},
        {u"back\\slash", "[back\\slash]"},
        // Control characters are escapes, which the grammar takes for marks.
        {u"one\r\ntwo", "[one]{\\r}{\\n}[two]"},
        // A second tab belongs to the shortcut's text.
        {u"a\tb\tc", "[a]<shortcut>[b\\tc]</shortcut>"},
        {u"", ""},
    };
    CLabelParser parser;
    for (const Case& c : cases) {
        MenuItemRecord record;
        record.parser = &parser;
        AnalyseMenuText(record, c.text);
        std::vector<MenuItemRecord> items;
        items.push_back(std::move(record));
        EXPECT_EQ(test::Spell(items), std::vector<std::string>{c.spelt}) << Narrow(c.text);
    }
}

} // namespace
} // namespace tervane
